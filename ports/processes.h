/// The running processes, and which of them use a device.
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

/// The processes that have the device open or locked, as far as this user can see.
///
/// The open files of other users are hidden from anyone but root; locks are not. The device itself is not opened:
/// that would toggle its modem lines.
std::vector<Process> holdersOf(const Computer& computer, const std::filesystem::path& node);

/// Whether a program of this name is running.
bool isRunning(const Computer& computer, const std::string& name);

}  // namespace ports
