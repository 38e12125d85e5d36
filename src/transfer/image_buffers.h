/// The firmware image that is sent.
#pragma once

#include <QByteArray>

/// Size of every firmware image, in bytes.
inline constexpr qsizetype kImageSize = 245'760;

/// Image to send: kImageSize bytes from the file, and one more, which stays 0. Filled by the image loading.
extern QByteArray gImageBuf;
