/// The serial devices of the computer.
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
    std::filesystem::path adapter;     ///< its folder in sysfs; empty: not a USB adapter
    std::string description;           ///< manufacturer, product and their IDs; empty: not a USB adapter
    std::string serialNumber;          ///< empty: it has none
    bool sharesName = false;           ///< no serial number distinguishes it from others of its kind
    std::filesystem::path stableName;  ///< persistent link to it; empty: it has none
    bool keptFromModemManager = false;
};

/// The file that the path resolves to; empty: there is none.
std::filesystem::path endOf(const std::filesystem::path& path);

/// All of them, sorted by name and number; without those that exist in name only.
std::vector<SerialDevice> serialDevices(const Computer& computer);

}  // namespace ports
