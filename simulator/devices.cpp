#include "simulator/devices.h"

#include "simulator/image.h"

#include <iomanip>
#include <sstream>
#include <stdexcept>

namespace units {

namespace {

constexpr std::size_t kModelSize = 16;
constexpr std::uint16_t kDefaultTypeNumber = 12500;
constexpr std::uint16_t kDefaultInterfaceVersion = 1004;

void require(bool condition, const char* reason) {
    if (!condition)
        throw std::invalid_argument(reason);
}

void check(const Options& options) {
    require(options.model.size() <= kModelSize, "the model name has up to 16 characters");
    require(options.status.size() == 2, "the status has 2 characters");
    require(options.sensors <= 99, "the number of sensor amplifiers is 0 to 99");
    require(options.uploadBlocks >= 1 && options.uploadBlocks <= kImageBlocks, "an upload sends 1 to 1920 blocks");
    for (const Bytes* image : {&options.amplifierFirmware, &options.interfaceFirmware})
        require(image->empty() || image->size() == kImageSize, "a firmware image has 245760 bytes");
}

std::string twoDigits(unsigned number) {
    return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

std::string versionText(std::uint16_t thousandths) {
    std::ostringstream text;
    text << thousandths / 1000 << '.' << std::setw(3) << std::setfill('0') << thousandths % 1000;
    return text.str();
}

}  // namespace

Devices::Devices(const Options& options)
    : model_(options.model),
      status_(options.status + twoDigits(options.sensors % 100)),
      kind_(options.kind),
      devices_{Device{options.interfaceFirmware, options.saveInterface, options.interfaceCheck},
               Device{options.amplifierFirmware, options.saveAmplifier, options.amplifierCheck}} {
    check(options);
    model_.resize(kModelSize, ' ');
    if (devices_[0].firmware.empty())
        devices_[0].firmware = makeImage("SV-IFU", kDefaultInterfaceVersion, 1);
    if (devices_[1].firmware.empty())
        devices_[1].firmware = makeImage("SV-AMP", kDefaultTypeNumber, 2);
    save(Unit::interface);
    save(Unit::amplifier);
}

std::string Devices::attributes() const {
    const std::lock_guard lock(mutex_);
    return model_ + "V" + versionText(imageVersion(device(Unit::interface).firmware));
}

std::string Devices::status() const { return status_; }

std::uint16_t Devices::typeNumber() const {
    const std::lock_guard lock(mutex_);
    return imageVersion(device(Unit::amplifier).firmware);
}

CheckMode Devices::checkMode(Unit unit) const { return device(unit).checkMode; }

Bytes Devices::firmware(Unit unit) const {
    const std::lock_guard lock(mutex_);
    return device(unit).firmware;
}

void Devices::install(Unit unit, Bytes image) {
    const std::lock_guard lock(mutex_);
    devices_[static_cast<std::size_t>(unit)].firmware = std::move(image);
    save(unit);
}

void Devices::save(Unit unit) const {
    if (!device(unit).file.empty())
        saveImage(device(unit).file, device(unit).firmware);
}

}  // namespace units
