/// The two units' identity and firmware. Thread-safe.
#pragma once

#include "simulator/bytes.h"
#include "simulator/options.h"

#include <array>
#include <cstdint>
#include <mutex>
#include <string>

namespace units {

class Devices {
public:
    /// @throws std::invalid_argument  an option is out of range
    /// @throws std::runtime_error     a file to save the firmware to cannot be written
    explicit Devices(const Options& options);

    /// Model name padded to 16 characters, then "V" and the version.
    std::string attributes() const;

    /// Two status characters and the two-digit number of amplifiers.
    std::string status() const;

    std::uint16_t typeNumber() const;
    std::uint8_t kind() const { return kind_; }
    CheckMode checkMode(Unit unit) const;

    Bytes firmware(Unit unit) const;

    /// Installs an image of kImageSize bytes in a unit, which reports its version from then on.
    void install(Unit unit, Bytes image);

private:
    struct Device {
        Bytes firmware;
        std::string file;
        CheckMode checkMode;
    };

    const Device& device(Unit unit) const { return devices_[static_cast<std::size_t>(unit)]; }
    void save(Unit unit) const;

    mutable std::mutex mutex_;
    std::string model_;
    std::string status_;
    std::uint8_t kind_;
    std::array<Device, 2> devices_;
};

}  // namespace units
