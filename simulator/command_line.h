/// What dravolt-units is asked to do.
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
    std::string expect;     ///< receive only: file the image must equal; empty: none
    std::string imageFile;  ///< make image
    std::string typeKey;
    std::uint16_t version = 1000;
    std::uint32_t seed = 1;
};

/// Reads the arguments after the program's name and the firmware files they name.
/// @throws std::invalid_argument  the arguments make no sense; says why
/// @throws std::runtime_error     a file cannot be read
CommandLine parseCommandLine(std::span<const std::string> arguments);

/// Describes all options and faults.
std::string commandLineHelp();

}  // namespace units
