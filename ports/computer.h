/// The computer whose ports are shown. Tests make one of their own.
#pragma once

#include <filesystem>

namespace ports {

struct Computer {
    std::filesystem::path root = "/";  ///< what lies in sys, dev, proc and run below it is looked at
    std::filesystem::path folder;      ///< folder of the programs
};

}  // namespace ports
