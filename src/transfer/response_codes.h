/// Response codes and result numbers.
#pragma once

#include <QString>

/// The only result number that means success.
inline constexpr int kResultSuccess = 7;

/// Result number of response code `code`: 7 for "0000", 9 to 27 for the other known codes, 8 for any other text.
int fncResultNo(const QString& code);
