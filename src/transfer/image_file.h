/// The firmware image that is sent, the one that is read back, and their files.
#pragma once

#include <QByteArray>
#include <QString>

/// Size of every firmware image, in bytes.
inline constexpr qsizetype kImageSize = 245'760;

/// Image to send: kImageSize bytes from the file, and one more, which stays 0. Filled by the image loading.
extern QByteArray gImageBuf;

/// Firmware read back, in the same layout; what has not come is 0. Filled by the transfer run.
extern QByteArray gReadBuf;

/// Compares all of gReadBuf with all of gImageBuf.
/// @return 0 when they are equal, else 1
int fncCompareImage();

enum BinaryFileMode : int { kReadFile = 0, kWriteFile = 1 };

/// Moves the bytes of the file `fileName` (blanks at its ends aside) to or from `array`, from its first byte to the
/// array's upper index.
///
/// The last element of the array takes no part. A file is written whole or not at all, and an older one replaced. A
/// failure is reported.
/// @return the number of bytes moved, the array's upper index; 0 after a failure
int fncBinaryFile(const QString& fileName, QByteArray& array, BinaryFileMode mode);
