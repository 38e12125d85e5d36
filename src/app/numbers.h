/// How a text in an INI file or an image is read as a number, and how a version is written.
///
/// Pure: no file, no window.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

/// Value of the longest leading part of `text` that reads as a number, 0 when there is none.
///
/// A number is decimal digits with optional sign, decimal point and exponent, or hexadecimal digits after "&H"; blanks
/// inside the text are skipped.
double leadingNumber(const QString& text);

/// The number that all of `text` is, blanks at its ends aside; nothing if it is none.
std::optional<double> wholeNumber(const QString& text);

/// `value` rounded to the nearest whole number, halves to the even one.
/// @throws RuntimeFailure  the number does not fit into 16 bits, sign included
std::int16_t toInt16(double value);

/// The same for 32 bits.
std::int32_t toInt32(double value);

/// Version text of `thousandths`: 1004 gives 1.004.
QString versionText(int thousandths);
