/// The image to send, the firmware read back, and their files.
#pragma once

#include <QByteArray>
#include <QString>

/// Size of every firmware image, in bytes.
inline constexpr qsizetype kImageSize = 245'760;

/// Image to send: kImageSize bytes from the file, and an extra one that stays 0. Filled by the image loading.
extern QByteArray gImageBuf;

/// Firmware read back, in the same layout; 0 where nothing was received. Filled by the transfer run.
extern QByteArray gReadBuf;

/// Compares all of gReadBuf with all of gImageBuf.
/// @return 0 when they are equal, else 1
int fncCompareImage();

enum BinaryFileMode : int { kReadFile = 0, kWriteFile = 1 };

/// Copies the file `fileName` (without blanks at its ends) to or from `array`.
///
/// The last element of the array is left out. A file is written completely or not at all, and replaces an older one. A
/// failure is reported.
/// @return the number of bytes copied, which is the array's upper index; 0 after a failure
int fncBinaryFile(const QString& fileName, QByteArray& array, BinaryFileMode mode);
