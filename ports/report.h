/// The list of devices and links, and what is missing.
#pragma once

#include "ports/computer.h"
#include "ports/output.h"

namespace ports {

/// Writes the list, and what keeps this user from using a device.
/// @return whether there is a device that this user may open
bool report(const Computer& computer, Output& out);

/// Writes why this user cannot make links; nothing if they can.
void explainFolder(const Computer& computer, Output& out);

}  // namespace ports
