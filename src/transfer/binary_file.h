/// Binary files of images.
#pragma once

#include <QByteArray>
#include <QString>

/// Reads the file `fileName` (blanks at its ends aside) into `array`, from its first byte to the array's upper index.
///
/// The last element of the array is not filled. A failure is reported.
/// @return the number of bytes moved, the array's upper index; 0 after a failure
int fncBinaryFile(const QString& fileName, QByteArray& array);
