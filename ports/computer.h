/// The computer whose ports are shown; tests set up their own.
#pragma once

#include <filesystem>

namespace ports {

struct Computer {
    std::filesystem::path root = "/";  ///< sys, dev, proc and run are read below it
    std::filesystem::path folder;      ///< folder of the programs
};

}  // namespace ports
