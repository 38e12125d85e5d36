/// The command line of dravolt-units.
#pragma once

#include "simulator/options.h"

#include <cstdint>
#include <span>
#include <string>

namespace units {

/// What the program has been asked to do.
struct CommandLine {
    enum class Task { simulate, makeImage, help };

    Task task = Task::simulate;
    Options options;
    std::string expect;     ///< with receive-only: file that the image must match; empty: none
    std::string imageFile;  ///< make image
    std::string typeKey;
    std::uint16_t version = 1000;
    std::uint32_t seed = 1;
};

/// Reads the arguments after the program's name and the firmware files they name.
/// @throws std::invalid_argument  the arguments are wrong; says why
/// @throws std::runtime_error     a file cannot be read
CommandLine parseCommandLine(std::span<const std::string> arguments);

/// Describes all options and faults.
std::string commandLineHelp();

}  // namespace units
