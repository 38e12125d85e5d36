/// The firmware image that is sent, and the one that is read back.
#pragma once

#include <QByteArray>
#include <QString>

/// Size of every firmware image, in bytes.
inline constexpr qsizetype kImageSize = 245'760;

/// Image to send: kImageSize bytes from the file, and one more, which stays 0. Filled by the image loading.
extern QByteArray gImageBuf;

/// Firmware read back, in the same layout; what has not come is 0. Filled by the read steps.
extern QByteArray gReadBuf;

/// Number of bytes stored in gReadBuf.
extern int gReadCount;

/// File chosen for "Save the present firmware", preset in the next dialog. Written by the main window.
extern QString gSaveFileName;

/// Compares all of gReadBuf with all of gImageBuf.
/// @return 0 when they are equal, else 1
int fncCompareImage();
