#include "ports/com_links.h"

#include "ports/access.h"
#include "ports/language.h"
#include "ports/serial_devices.h"

#include <algorithm>
#include <random>
#include <sstream>
#include <system_error>

namespace fs = std::filesystem;

namespace ports {

namespace {

constexpr Text kNothingThere{"%1: there is no such device", "%1: デバイスがありません"};
constexpr Text kNoSerialPort{"%1 is not a serial port", "%1 はシリアルポートではありません"};
constexpr Text kNoLink{"COM%1 has no link", "COM%1 のリンクはありません"};
constexpr Text kNotALink{"%1 is not a link; it is left unchanged", "%1 はリンクではないため、変更しません"};
constexpr Text kOwnedByOther{"%1 belongs to %2; only %2 and root can change it",
                             "%1 の所有者は %2 です。変更できるのは %2 と root だけです"};
constexpr Text kFailed{"%1: %2", "%1: %2"};

fs::path portsFolder(const Computer& computer) { return computer.folder / "ports"; }

std::string nameOf(int number) { return "com" + std::to_string(number); }

bool isThere(const fs::path& link) {
    std::error_code none;
    return fs::exists(fs::symlink_status(link, none));
}

/// What exists as com<number>; the first is in effect.
std::vector<fs::path> linksOf(const Computer& computer, int number) {
    std::vector<fs::path> links;
    for (const fs::path& folder : {portsFolder(computer), computer.folder})
        if (const fs::path link = folder / nameOf(number); isThere(link))
            links.push_back(link);
    return links;
}

/// Anything else of that name may be the user's own file.
void requireLink(const fs::path& link) {
    if (!fs::is_symlink(fs::symlink_status(link)))
        throw Refusal(said(kNotALink, {link}));
}

[[noreturn]] void refuse(const fs::path& link, const std::error_code& error) {
    // In a writable folder this is the sticky bit: the link belongs to somebody else.
    if (accessTo(link.parent_path()).kind == Access::Kind::granted && error.value() == EPERM)
        throw Refusal(said(kOwnedByOther, {link, ownerOf(link)}));
    throw Refusal(said(kFailed, {link, error.message()}));
}

/// A temporary name beside the link; random, so that others who can write to the folder cannot block it.
fs::path freshName(const fs::path& link) {
    std::random_device random;
    std::ostringstream name;
    name << '.' << link.filename().string() << '.' << random() << random();
    return link.parent_path() / name.str();
}

/// Target of a link to the device that the user has named by this path.
NewTarget targetFor(const SerialDevice& device, const fs::path& named, const fs::path& serial) {
    const bool isShared = device.sharesName && named.parent_path() == serial / "by-id";
    if (named.string().starts_with((serial / "").string()) && !isShared)
        return {named};
    if (device.stableName.empty())
        return {device.node};
    return {device.stableName, device.sharesName};
}

/// The serial device behind `device`; or a pseudo-terminal, for practice.
SerialDevice deviceNamed(const Computer& computer, const fs::path& device) {
    SerialDevice terminal;
    terminal.node = endOf(device);
    if (terminal.node.empty())
        throw Refusal(said(kNothingThere, {device}));
    for (const SerialDevice& known : serialDevices(computer))
        if (endOf(known.node) == terminal.node)
            return known;
    if (terminal.node.parent_path() != "/dev/pts" || !fs::is_character_file(terminal.node))
        throw Refusal(said(kNoSerialPort, {device}));
    return terminal;
}

}  // namespace

fs::path linkFolder(const Computer& computer) {
    std::error_code none;
    return fs::is_directory(portsFolder(computer), none) ? portsFolder(computer) : computer.folder;
}

std::vector<ComLink> comLinks(const Computer& computer) {
    std::vector<ComLink> links;
    for (int number = 1; number <= kMaxPorts; ++number) {
        const std::vector<fs::path> found = linksOf(computer, number);
        std::error_code none;
        const fs::path target = found.empty() ? fs::path() : fs::read_symlink(found[0], none);
        if (target.empty())
            continue;
        const fs::path ignored = found.size() > 1 ? found[1] : fs::path();
        links.push_back({number, found[0], ignored, target, endOf(found[0])});
    }
    return links;
}

NewTarget setComLink(const Computer& computer, int number, const std::string& device) {
    const fs::path dev = computer.root / "dev";
    const fs::path named = device.find('/') == std::string::npos ? dev / device : fs::absolute(device);
    const SerialDevice found = deviceNamed(computer, named);
    const NewTarget target = targetFor(found, named, dev / "serial");
    const fs::path link = linkFolder(computer) / nameOf(number);
    if (isThere(link))
        requireLink(link);
    // Created under another name and renamed, so that the port is never without a link.
    const fs::path fresh = freshName(link);
    std::error_code error;
    fs::create_symlink(target.path, fresh, error);
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

void removeComLink(const Computer& computer, int number) {
    std::vector<fs::path> links = linksOf(computer, number);
    if (links.empty())
        throw Refusal(said(kNoLink, {std::to_string(number)}));
    std::for_each(links.begin(), links.end(), requireLink);
    // The one in effect goes last: if the other cannot be removed, it must not take over.
    std::reverse(links.begin(), links.end());
    for (const fs::path& link : links) {
        std::error_code error;
        fs::remove(link, error);
        if (error)
            refuse(link, error);
    }
}

}  // namespace ports
