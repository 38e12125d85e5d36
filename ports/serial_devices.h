/// The serial devices that are there.
#pragma once

#include "ports/computer.h"

#include <filesystem>
#include <string>
#include <vector>

namespace ports {

/// One serial device, as the kernel describes it.
struct SerialDevice {
    std::string name;                  ///< as the kernel calls it: ttyUSB0
    std::filesystem::path node;        ///< the file that is opened
    std::string driver;                ///< empty: unknown
    std::filesystem::path adapter;     ///< the kernel's folder of the USB adapter; empty: it is not at USB
    std::string description;           ///< maker, product and their numbers; empty: it is not at USB
    std::string serialNumber;          ///< empty: it has none
    bool sharesName = false;           ///< no serial number tells the adapter from others of its kind
    std::filesystem::path stableName;  ///< link that stays the same; empty: it has none
    bool keptFromModemManager = false;
};

/// The file that the path leads to over all links; empty: there is none.
std::filesystem::path endOf(const std::filesystem::path& path);

/// All of them, in the order of their names and numbers; not those that are there in name only.
std::vector<SerialDevice> serialDevices(const Computer& computer);

}  // namespace ports
