/// The programs that run, and which of them holds a device.
#pragma once

#include "ports/computer.h"

#include <filesystem>
#include <string>
#include <vector>

namespace ports {

struct Process {
    int number = 0;
    std::string name;  ///< as the kernel knows it, at most 15 characters
};

/// The programs that have the device open, or a lock on it, as far as this user can see.
///
/// The open files of other users are hidden from anyone but root; locks are not. The device itself is not touched: to
/// open it would move its modem lines.
std::vector<Process> holdersOf(const Computer& computer, const std::filesystem::path& node);

/// Whether a program of this name runs.
bool isRunning(const Computer& computer, const std::string& name);

}  // namespace ports
