#include "ports/serial_devices.h"

#include <algorithm>
#include <fstream>
#include <set>
#include <tuple>

namespace fs = std::filesystem;

namespace ports {

namespace {

/// The first line of a file in sysfs; empty if there is none.
std::string line(const fs::path& file) {
    std::ifstream stream(file);
    std::string text;
    std::getline(stream, text);
    return text;
}

/// The folder itself or its nearest parent that meets the condition; empty: none.
template <typename Condition>
fs::path nearest(fs::path folder, const fs::path& top, Condition condition) {
    for (; folder != top && folder.has_relative_path(); folder = folder.parent_path())
        if (condition(folder))
            return folder;
    return {};
}

/// Newer kernels put an extra bus between a built-in port and its driver.
bool hasDriver(const fs::path& folder) {
    std::error_code none;
    const fs::path driver = fs::read_symlink(folder / "driver", none);
    return !none && driver.string().find("/serial-base/") == std::string::npos;
}

void describe(SerialDevice& device, const fs::path& usb) {
    for (const char* part : {"manufacturer", "product"})
        if (const std::string text = line(usb / part); !text.empty())
            device.description += text + ' ';
    device.description += '[' + line(usb / "idVendor") + ':' + line(usb / "idProduct") + ']';
    device.serialNumber = line(usb / "serial");
    device.adapter = usb;
}

/// Whether the names in /dev/serial/by-id contain the number; udev omits blank ones and ones with other characters.
bool isInNames(const std::string& serialNumber) {
    return serialNumber.find_first_not_of(' ') != std::string::npos &&
           std::all_of(serialNumber.begin(), serialNumber.end(),
                       [](char c) { return c >= ' ' && c <= '~' && c != ','; });
}

/// Whether another adapter can have the same name in /dev/serial/by-id, which may then point to either.
bool sharesName(const SerialDevice& device, const std::vector<SerialDevice>& devices) {
    if (device.adapter.empty())
        return false;
    return !isInNames(device.serialNumber) ||
           std::any_of(devices.begin(), devices.end(), [&](const SerialDevice& other) {
               return other.adapter != device.adapter && other.description == device.description &&
                      other.serialNumber == device.serialNumber;
           });
}

/// The link to `node` in a folder; the first by name if there are several.
fs::path linkTo(const fs::path& node, const fs::path& folder) {
    std::set<fs::path> links;
    std::error_code none;
    for (const auto& link : fs::directory_iterator(folder, none))
        if (endOf(link) == endOf(node))
            links.insert(link);
    return links.empty() ? fs::path() : *links.begin();
}

/// The link to the device in /dev/serial: by ID if the adapter's name is unique, else by path.
fs::path stableName(const Computer& computer, const SerialDevice& device) {
    const fs::path serial = computer.root / "dev/serial";
    const fs::path byIdentity = device.sharesName ? fs::path() : linkTo(device.node, serial / "by-id");
    return byIdentity.empty() ? linkTo(device.node, serial / "by-path") : byIdentity;
}

/// Whether udev tells ModemManager to leave the device alone.
bool isKeptFromModemManager(const fs::path& root, const std::string& number) {
    std::ifstream record(root / "run/udev/data" / ("c" + number));
    for (std::string entry; std::getline(record, entry);)
        if (entry == "E:ID_MM_PORT_IGNORE=1" || entry == "E:ID_MM_DEVICE_IGNORE=1")
            return true;
    return false;
}

/// Whether there is hardware: the kernel reserves names for built-in ports that do not exist.
bool isReal(const fs::path& entry) {
    std::error_code none;
    return fs::exists(entry / "device", none) && line(entry / "type") != "0";
}

SerialDevice deviceOf(const Computer& computer, const fs::path& entry) {
    SerialDevice device;
    device.name = entry.filename();
    device.node = computer.root / "dev" / device.name;
    const fs::path hardware = fs::canonical(entry / "device");
    const fs::path top = fs::canonical(computer.root / "sys");
    if (const fs::path driven = nearest(hardware, top, hasDriver); !driven.empty())
        device.driver = fs::read_symlink(driven / "driver").filename();
    const auto isUsb = [](const fs::path& folder) { return fs::exists(folder / "idVendor"); };
    if (const fs::path usb = nearest(hardware, top, isUsb); !usb.empty())
        describe(device, usb);
    device.keptFromModemManager = isKeptFromModemManager(computer.root, line(entry / "dev"));
    return device;
}

/// ttyUSB2 before ttyUSB10.
bool isBefore(const SerialDevice& a, const SerialDevice& b) {
    return std::make_tuple(a.name.size(), a.name) < std::make_tuple(b.name.size(), b.name);
}

}  // namespace

fs::path endOf(const fs::path& path) {
    std::error_code none;
    return fs::canonical(path, none);
}

std::vector<SerialDevice> serialDevices(const Computer& computer) {
    std::vector<SerialDevice> devices;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(computer.root / "sys/class/tty", none))
        if (isReal(entry.path()))
            devices.push_back(deviceOf(computer, entry.path()));
    for (SerialDevice& device : devices) {
        device.sharesName = sharesName(device, devices);
        device.stableName = stableName(computer, device);
    }
    std::sort(devices.begin(), devices.end(), isBefore);
    return devices;
}

}  // namespace ports
