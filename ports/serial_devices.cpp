#include "ports/serial_devices.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <tuple>

namespace fs = std::filesystem;

namespace ports {

namespace {

/// The first line of a file of the kernel; empty if there is none.
std::string line(const fs::path& file) {
    std::ifstream stream(file);
    std::string text;
    std::getline(stream, text);
    return text;
}

/// The folder itself or the nearest one above it that fulfils the condition; empty: none.
template <typename Condition>
fs::path nearest(fs::path folder, const fs::path& top, Condition condition) {
    for (; folder != top && folder.has_relative_path(); folder = folder.parent_path())
        if (condition(folder))
            return folder;
    return {};
}

/// Newer kernels put a bus of their own between a built-in port and its driver.
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
}

/// The link to `node` in /dev/serial, by the adapter's identity or else by its place.
fs::path stableName(const fs::path& dev, const fs::path& node) {
    std::error_code none;
    for (const char* kind : {"serial/by-id", "serial/by-path"})
        for (const auto& link : fs::directory_iterator(dev / kind, none))
            if (endOf(link) == endOf(node))
                return link.path();
    return {};
}

/// Whether the device database says that ModemManager must not touch the device.
bool isKeptFromModemManager(const fs::path& root, const std::string& number) {
    std::ifstream record(root / "run/udev/data" / ("c" + number));
    for (std::string entry; std::getline(record, entry);)
        if (entry == "E:ID_MM_PORT_IGNORE=1" || entry == "E:ID_MM_DEVICE_IGNORE=1")
            return true;
    return false;
}

/// Whether hardware is behind the name: the kernel keeps names ready for built-in ports that do not exist.
bool isReal(const fs::path& entry) {
    std::error_code none;
    return fs::exists(entry / "device", none) && line(entry / "type") != "0";
}

SerialDevice deviceOf(const Machine& machine, const fs::path& entry) {
    SerialDevice device;
    device.name = entry.filename();
    device.node = machine.root / "dev" / device.name;
    const fs::path hardware = fs::canonical(entry / "device");
    const fs::path top = fs::canonical(machine.root / "sys");
    if (const fs::path driven = nearest(hardware, top, hasDriver); !driven.empty())
        device.driver = fs::read_symlink(driven / "driver").filename();
    const auto isUsb = [](const fs::path& folder) { return fs::exists(folder / "idVendor"); };
    if (const fs::path usb = nearest(hardware, top, isUsb); !usb.empty())
        describe(device, usb);
    device.stableName = stableName(machine.root / "dev", device.node);
    device.keptFromModemManager = isKeptFromModemManager(machine.root, line(entry / "dev"));
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

std::vector<SerialDevice> serialDevices(const Machine& machine) {
    std::vector<SerialDevice> devices;
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(machine.root / "sys/class/tty", none))
        if (isReal(entry.path()))
            devices.push_back(deviceOf(machine, entry.path()));
    std::sort(devices.begin(), devices.end(), isBefore);
    return devices;
}

}  // namespace ports
