/// The settings of this installation, from `Setting.INI` beside the program.
#pragma once

#include <QString>

#include <cstdint>

/// Number of the COM port in use.
extern std::int16_t gComPort;
/// Speed of the line as text, "38400".
extern QString gBaudRate;

/// Reads language and port, and shows the language dialog when the file gives no language.
///
/// Called once, first in the start-up sequence. A missing file is not a failure.
/// @return false after a failure, which has been reported; what was read before it stays set
bool fncReadSetting();
