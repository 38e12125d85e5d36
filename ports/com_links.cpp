#include "ports/com_links.h"

#include "ports/access.h"
#include "ports/language.h"
#include "ports/serial_devices.h"

#include <system_error>

namespace fs = std::filesystem;

namespace ports {

namespace {

constexpr Text kNothingThere{"%1: there is no such device", "%1: デバイスがありません"};
constexpr Text kNoSerialPort{"%1 is no serial port", "%1 はシリアルポートではありません"};
constexpr Text kNoLink{"COM%1 has no link", "COM%1 のリンクはありません"};
constexpr Text kNotALink{"%1 is no link; it stays as it is", "%1 はリンクではないため、変更しません"};
constexpr Text kOwnedByOther{"%1 belongs to %2; only %2 and root can change it",
                             "%1 の所有者は %2 です。変更できるのは %2 と root だけです"};
constexpr Text kFailed{"%1: %2", "%1: %2"};

fs::path linkOf(const Machine& machine, int number) { return machine.folder / ("com" + std::to_string(number)); }

/// Something else of that name may be the user's own file.
void requireLink(const fs::path& link) {
    if (!fs::is_symlink(fs::symlink_status(link)))
        throw Refusal(said(kNotALink, {link}));
}

[[noreturn]] void refuse(const fs::path& link, const std::error_code& error) {
    // Who may write into the folder is hindered by the owner of the link alone.
    if (accessTo(link.parent_path()).kind == Access::Kind::granted && error.value() == EPERM)
        throw Refusal(said(kOwnedByOther, {link, ownerOf(link)}));
    throw Refusal(said(kFailed, {link, error.message()}));
}

/// The serial device behind `device`, or the pseudo-terminal, with which one practises.
SerialDevice deviceNamed(const Machine& machine, const fs::path& device) {
    SerialDevice terminal;
    terminal.node = endOf(device);
    if (terminal.node.empty())
        throw Refusal(said(kNothingThere, {device}));
    for (const SerialDevice& known : serialDevices(machine))
        if (endOf(known.node) == terminal.node)
            return known;
    if (terminal.node.parent_path() != "/dev/pts" || !fs::is_character_file(terminal.node))
        throw Refusal(said(kNoSerialPort, {device}));
    return terminal;
}

}  // namespace

std::vector<ComLink> comLinks(const Machine& machine) {
    std::vector<ComLink> links;
    for (int number = 1; number <= kMostPorts; ++number) {
        std::error_code none;
        const fs::path link = linkOf(machine, number);
        const fs::path target = fs::read_symlink(link, none);
        if (none)
            continue;
        links.push_back({number, target, endOf(link)});
    }
    return links;
}

fs::path setComLink(const Machine& machine, int number, const std::string& device) {
    const fs::path dev = machine.root / "dev";
    // An absolute path replaces what stands before it.
    const fs::path named = device.find('/') == std::string::npos ? dev / device : fs::absolute(device);
    const SerialDevice found = deviceNamed(machine, named);
    const bool isStable = named.string().starts_with((dev / "serial/").string());
    const fs::path target = isStable ? named : found.stableName.empty() ? found.node : found.stableName;
    const fs::path link = linkOf(machine, number);
    if (fs::symlink_status(link).type() != fs::file_type::not_found)
        requireLink(link);
    // Made beside it and moved over it, so that the port always leads somewhere.
    const fs::path fresh = link.string() + ".new";
    std::error_code error;
    fs::remove(fresh, error);
    fs::create_symlink(target, fresh, error);
    if (error)
        refuse(link, error);
    fs::rename(fresh, link, error);
    if (error) {
        std::error_code none;
        fs::remove(fresh, none);
        refuse(link, error);
    }
    return target;
}

void removeComLink(const Machine& machine, int number) {
    const fs::path link = linkOf(machine, number);
    if (fs::symlink_status(link).type() == fs::file_type::not_found)
        throw Refusal(said(kNoLink, {std::to_string(number)}));
    requireLink(link);
    std::error_code error;
    fs::remove(link, error);
    if (error)
        refuse(link, error);
}

}  // namespace ports
