/// The information block of a firmware image.
#pragma once

#include <QByteArray>
#include <QString>

/// What to get from fncGetImageInfo().
enum ImageInfo : int { kImageVersionWord = 1, kImageTypeKey = 2 };

/// A text from the image in gImageBuf: its version word in decimal, or its type key without blanks at the ends.
///
/// Empty if the version word is above 32767, which is reported as an overflow, and if the buffer is empty.
QString fncGetImageInfo(int kind);

/// The characters at unit addresses `first` to `last`, where `buffer` starts at unit address `base`; cut off at the end
/// of the buffer. Pure.
QString fncGetImageText(const QByteArray& buffer, int first, int last, int base);

/// The version word of `image`. Pure.
/// @throws RuntimeFailure  it is above 32767
int imageVersionWord(const QByteArray& image);
