/// Binary files of images.
#pragma once

#include <QByteArray>
#include <QString>

enum BinaryFileMode : int { kReadFile = 0, kWriteFile = 1 };

/// Moves the bytes of the file `fileName` (blanks at its ends aside) to or from `array`, from its first byte to the
/// array's upper index.
///
/// The last element of the array takes no part. A file is written whole or not at all, and an older one replaced. A
/// failure is reported.
/// @return the number of bytes moved, the array's upper index; 0 after a failure
int fncBinaryFile(const QString& fileName, QByteArray& array, BinaryFileMode mode);
