/// The commands of dravolt-ports.
#pragma once

#include "ports/computer.h"
#include "ports/output.h"

#include <string>
#include <vector>

namespace ports {

/// Runs the command that the arguments give.
/// @return exit status: 0 done; 1 not done, or no device that this user may open; 2 wrong arguments
int run(const Computer& computer, const std::vector<std::string>& arguments, Output& out, Output& error);

}  // namespace ports
