/// Numbers in texts from INI files and images, and version texts.
///
/// Pure: no file, no window.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

/// Value of the longest prefix of `text` that is a number, 0 when there is none.
///
/// A number is decimal, with optional sign, decimal point and exponent, or hexadecimal after "&H"; blanks inside the
/// text are skipped.
double leadingNumber(const QString& text);

/// The value of `text` if all of it, but for blanks at its ends, is a number.
std::optional<double> wholeNumber(const QString& text);

/// `value` rounded to the nearest integer, halves to even.
/// @throws RuntimeFailure  the number does not fit into a signed 16-bit integer
std::int16_t toInt16(double value);

/// The same for 32 bits.
std::int32_t toInt32(double value);

/// Version text of `thousandths`: 1004 gives 1.004.
QString versionText(int thousandths);
