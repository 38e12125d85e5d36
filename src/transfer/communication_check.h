/// The communication check before a write.
#pragma once

/// Reads the sensor amplifier's type once.
///
/// @return 0 when it answers normally; else its response code as a decimal number, or 8 when that is no number
int fncCheckSensorComm();
