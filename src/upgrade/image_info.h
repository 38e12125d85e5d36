/// The information block of a firmware image.
#pragma once

#include <QByteArray>
#include <QString>

/// What fncGetImageInfo() gives.
enum ImageInfo : int { kImageVersionWord = 1, kImageTypeKey = 2 };

/// A text from the image in gImageBuf: its version word in decimal, or its type key without blanks at the ends.
///
/// A version word above 32767 is reported as an overflow and gives empty text, as an empty buffer does.
QString fncGetImageInfo(int kind);

/// The characters of unit addresses `first` to `last`, where `buffer` begins at unit address `base`; ends early with
/// the buffer. Pure.
QString fncGetImageText(const QByteArray& buffer, int first, int last, int base);

/// The version word of `image`. Pure.
/// @throws RuntimeFailure  it is above 32767
int imageVersionWord(const QByteArray& image);
