#include "ports/report.h"

#include "ports/access.h"
#include "ports/com_links.h"
#include "ports/language.h"
#include "ports/processes.h"
#include "ports/serial_devices.h"

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace ports {

namespace {

constexpr Text kBuiltIn{"serial port of this computer", "本体のシリアルポート"};
constexpr Text kDriver{", driver %1", "、ドライバー %1"};
constexpr Text kSerialNumber{", serial number %1", "、製造番号 %1"};
constexpr Text kStableName{"stable name %1", "固定名 %1"};
constexpr Text kPlace{"stable name %1, by socket: no serial number of its own",
                      "固定名 %1 (固有の製造番号がないため、接続位置の名前)"};
constexpr Text kInUse{"in use by %1 (process %2)", "使用中: %1 (プロセス %2)"};
constexpr Text kNotSeenInUse{"not in use, as far as user %1 can see",
                             "使用中のプログラムは見つかりません (ユーザー %1)"};
constexpr Text kMayOpen{"you may open it", "開くことができます"};
constexpr Text kMayNotOpen{"you may not open it", "開く権限がありません"};
constexpr Text kWithoutLink{"COM%1 without a link", "リンクなしで COM%1"};

constexpr Text kLinks{"COM links in %1:", "%1 の COM リンク:"};
constexpr Text kNoLinks{"none", "なし"};
constexpr Text kLeadsNowhere{"COM%1 -> %2 (not plugged in)", "COM%1 -> %2 (接続されていません)"};
constexpr Text kLeadsTo{"COM%1 -> %2", "COM%1 -> %2"};

constexpr Text kBeside{"link: %1", "リンク: %1"};
constexpr Text kIgnored{"%1 is not used", "%1 は使用されません"};

constexpr Text kMissing{"What is missing:", "不足しているもの:"};
constexpr Text kNoDevice{
    "There is no serial device. Plug the adapter in; \"sudo dmesg\" shows whether it is recognised.",
    "シリアルデバイスがありません。アダプターを接続してください。認識されたかどうかは "
    "\"sudo dmesg\" で確認できます。"};
constexpr Text kNotInGroup{
    "%1: only members of the group %2 may use it. Add yourself with \"sudo adduser %3 %2\", then log out and in again.",
    "%1: 使用できるのはグループ %2 のメンバーだけです。\"sudo adduser %3 %2\" "
    "で追加し、ログインし直してください。"};
constexpr Text kLoginAgain{"%1: you are in the group %2, but not yet in this session. Log out and in again.",
                           "%1: グループ %2 に追加されていますが、このセッションではまだ有効ではありません。"
                           "ログインし直してください。"};
constexpr Text kDenied{"%1: %2 may not use it; ask the administrator.",
                       "%1: ユーザー %2 は使用できません。管理者に相談してください。"};
constexpr Text kModemManager{
    "ModemManager is running and may send modem commands to %1. Link it as a COM port, then unplug it and plug it in "
    "again: the installed package keeps ModemManager away from linked adapters.",
    "ModemManager が動作しており、%1 にモデムコマンドを送る可能性があります。COM "
    "ポートとしてリンクし、アダプターを抜き差ししてください。インストールされたパッケージが、リンクされたアダプターを "
    "ModemManager から保護します。"};
constexpr Text kBrltty{
    "The braille service brltty is running; it mistakes some adapters for braille displays. If an adapter is "
    "not listed, end it with \"sudo systemctl stop brltty\".",
    "点字サービス brltty が動作しています。一部のアダプターを点字ディスプレイとして占有します。"
    "アダプターが表示されない場合は \"sudo systemctl stop brltty\" で停止してください。"};

/// Adds the reason why this user may not use the file, if there is one.
void explain(const fs::path& file, std::set<std::string>& missing) {
    const Access access = accessTo(file);
    switch (access.kind) {
    case Access::Kind::granted:
        return;
    case Access::Kind::notInGroup:
        missing.insert(said(kNotInGroup, {file, access.group, userName()}));
        return;
    case Access::Kind::loginAgain:
        missing.insert(said(kLoginAgain, {file, access.group}));
        return;
    case Access::Kind::denied:
        missing.insert(said(kDenied, {file, userName()}));
    }
}

bool mayOpen(const SerialDevice& device) { return accessTo(device.node).kind == Access::Kind::granted; }

/// The COM ports of the device: those linked to it, and a built-in port's own unless that has a link.
std::string portsOf(const SerialDevice& device, const std::vector<ComLink>& links) {
    std::string ports;
    for (const ComLink& link : links)
        if (link.device == endOf(device.node))
            ports += "  COM" + std::to_string(link.number);
    for (int number = 1; number <= kMaxPorts; ++number)
        if (device.name == "ttyS" + std::to_string(number - 1) &&
            std::none_of(links.begin(), links.end(), [&](const ComLink& link) { return link.number == number; }))
            ports += "  " + said(kWithoutLink, {std::to_string(number)});
    return ports;
}

void list(const Computer& computer, const SerialDevice& device, const std::vector<ComLink>& links, Output& out) {
    const auto next = [&out]() -> Output& { return out << '\n' << "    "; };
    out << device.node << portsOf(device, links);
    next() << (device.description.empty() ? said(kBuiltIn) : device.description);
    if (!device.driver.empty())
        out << said(kDriver, {device.driver});
    if (!device.serialNumber.empty())
        out << said(kSerialNumber, {device.serialNumber});
    if (!device.stableName.empty())
        next() << said(device.sharesName ? kPlace : kStableName, {device.stableName});
    const std::vector<Process> holders = holdersOf(computer, device.node);
    for (const Process& holder : holders)
        next() << said(kInUse, {holder.name, std::to_string(holder.number)});
    if (holders.empty())
        next() << said(kNotSeenInUse, {userName()});
    next() << said(mayOpen(device) ? kMayOpen : kMayNotOpen) << '\n' << '\n';
}

void list(const Computer& computer, const std::vector<ComLink>& links, Output& out) {
    out << said(kLinks, {linkFolder(computer)}) << '\n';
    for (const ComLink& link : links) {
        const std::string number = std::to_string(link.number);
        out << "    " << said(link.device.empty() ? kLeadsNowhere : kLeadsTo, {number, link.target}) << '\n';
        if (link.link.parent_path() != linkFolder(computer))
            out << "        " << said(kBeside, {link.link}) << '\n';
        if (!link.ignored.empty())
            out << "        " << said(kIgnored, {link.ignored}) << '\n';
    }
    if (links.empty())
        out << "    " << said(kNoLinks) << '\n';
}

void list(const std::set<std::string>& missing, Output& out) {
    if (missing.empty())
        return;
    out << '\n' << said(kMissing) << '\n';
    for (const std::string& one : missing)
        out << "  - " << one << '\n';
}

std::set<std::string> missingFor(const Computer& computer, const std::vector<SerialDevice>& devices) {
    std::set<std::string> missing;
    if (devices.empty())
        missing.insert(said(kNoDevice));
    const bool modemManager = isRunning(computer, "ModemManager");
    for (const SerialDevice& device : devices) {
        explain(device.node, missing);
        // ModemManager leaves built-in ports alone.
        if (modemManager && !device.description.empty() && !device.keptFromModemManager)
            missing.insert(said(kModemManager, {device.node}));
    }
    if (isRunning(computer, "brltty"))
        missing.insert(said(kBrltty));
    explain(linkFolder(computer), missing);
    return missing;
}

}  // namespace

bool report(const Computer& computer, Output& out) {
    const std::vector<SerialDevice> devices = serialDevices(computer);
    const std::vector<ComLink> links = comLinks(computer);
    for (const SerialDevice& device : devices)
        list(computer, device, links, out);
    list(computer, links, out);
    list(missingFor(computer, devices), out);
    return std::any_of(devices.begin(), devices.end(), mayOpen);
}

void explainFolder(const Computer& computer, Output& out) {
    std::set<std::string> missing;
    explain(linkFolder(computer), missing);
    for (const std::string& one : missing)
        out << one << '\n';
}

}  // namespace ports
