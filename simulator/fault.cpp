#include "simulator/fault.h"

#include <algorithm>
#include <charconv>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <stdexcept>

namespace units {

namespace {

/// What must follow the colon of a fault.
enum class FaultValue { none, number, byte, numberAndPause, hex, code2, code4, data };

/// One line of the table of kinds.
struct FaultKindInfo {
    FaultKind kind;
    std::string_view name;
    FaultValue value;
    std::initializer_list<PlaceKind> places;
    std::string_view help;
};

using enum PlaceKind;

constexpr std::initializer_list<PlaceKind> kEverywhere = {command, start, packet, eot, block, uploadEot};
constexpr std::initializer_list<PlaceKind> kFrames = {command};
constexpr std::initializer_list<PlaceKind> kLong = {command, block};
constexpr std::initializer_list<PlaceKind> kDownload = {packet, eot};
constexpr std::initializer_list<PlaceKind> kRequests = {command, packet, eot};
constexpr std::initializer_list<PlaceKind> kTransfer = {start, packet, eot, block, uploadEot};
constexpr std::initializer_list<PlaceKind> kHalves = {command, packet, block};
constexpr std::initializer_list<PlaceKind> kBlocks = {block};

constexpr FaultKindInfo kKinds[] = {
    {FaultKind::silence, "silence", FaultValue::none, kRequests, "neither carried out nor answered"},
    {FaultKind::lost, "lost", FaultValue::none, kEverywhere, "carried out, but the answer (or block) is not sent"},
    {FaultKind::mute, "mute", FaultValue::none, kEverywhere, "nothing is sent or received from here on"},
    {FaultKind::delay, "delay", FaultValue::number, kEverywhere, "MS: sent this many milliseconds late"},
    {FaultKind::cut, "cut", FaultValue::number, kLong, "N: stops after N bytes"},
    {FaultKind::split, "split", FaultValue::number, kLong, "MS: byte by byte, with this gap in milliseconds"},
    {FaultKind::splitat, "splitat", FaultValue::numberAndPause, kLong,
     "N[,MS]: in two parts, the first of N bytes, with this gap (100)"},
    {FaultKind::repeat, "repeat", FaultValue::none, kEverywhere, "sent twice"},
    {FaultKind::noise, "noise", FaultValue::hex, kEverywhere, "HEX: these bytes are sent first"},
    {FaultKind::flood, "flood", FaultValue::number, kEverywhere, "MS: a stream of bytes 55 for this time first"},
    {FaultKind::answer, "answer", FaultValue::hex, kEverywhere, "HEX: carried out, but these bytes are sent instead"},
    {FaultKind::can, "can", FaultValue::number, kTransfer,
     "N: not carried out, N CAN bytes instead; two or more end the transfer"},
    {FaultKind::nak, "nak", FaultValue::none, kDownload, "not carried out, answered with NAK"},
    {FaultKind::bcc, "bcc", FaultValue::none, kLong, "the check byte is wrong"},
    {FaultKind::garble, "garble", FaultValue::none, kLong, "a byte in the middle is damaged"},
    {FaultKind::number, "number", FaultValue::byte, kBlocks, "N: sent under this number, 0..255"},
    {FaultKind::endcode, "endcode", FaultValue::code2, kFrames, "XX: not carried out, the reply has this end code"},
    {FaultKind::response, "response", FaultValue::code4, kFrames,
     "XXXX: refused with end code 0F and this response code, no data"},
    {FaultKind::data, "data", FaultValue::data, kFrames, "TEXT or 0xHEX: carried out, the reply has this data"},
    {FaultKind::unplug, "unplug", FaultValue::none, kEverywhere,
     "the port disappears before the answer, nothing is carried out"},
    {FaultKind::unplugin, "unplugin", FaultValue::none, kHalves,
     "the port disappears in the middle of the reply, packet or block"},
    {FaultKind::unplugafter, "unplugafter", FaultValue::none, kEverywhere, "the port disappears after the answer"},
};

constexpr unsigned kDefaultSplitPause = 100;

struct PlaceName {
    std::string_view name;
    PlaceKind kind;
    bool numbered;
    std::string_view help;
};

constexpr PlaceName kPlaceNames[] = {
    {"start", PlaceKind::start, false, "a start character of a download"},
    {"packet", PlaceKind::packet, true, "the arrival of packet N of a download, 1..1920; without N: any packet"},
    {"block", PlaceKind::block, true, "the sending of block N of an upload, 1..1920; without N: any block"},
    {"eot", PlaceKind::eot, false, "the arrival of the end of a download"},
    {"eot", PlaceKind::uploadEot, true, "the N-th sending of the end of an upload"},
};

[[noreturn]] void refuse(std::string_view text, const std::string& reason) {
    throw std::invalid_argument("fault '" + std::string(text) + "': " + reason);
}

std::optional<unsigned> parseNumber(std::string_view text) {
    unsigned number = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc{} || stop != text.data() + text.size())
        return std::nullopt;
    return number;
}

bool isCommandText(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char character) {
        return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z');
    });
}

/// Splits off what follows the last `mark`; empty if there is none.
std::optional<std::string_view> splitOff(std::string_view& text, char mark) {
    const std::size_t at = text.rfind(mark);
    if (at == std::string_view::npos)
        return std::nullopt;
    const std::string_view tail = text.substr(at + 1);
    text = text.substr(0, at);
    return tail;
}

std::optional<Place> parsePlace(std::string_view text) {
    for (const PlaceName& candidate : kPlaceNames) {
        if (!text.starts_with(candidate.name))
            continue;
        const std::string_view rest = text.substr(candidate.name.size());
        if (rest.empty() && candidate.kind != PlaceKind::uploadEot)
            return Place{candidate.kind, {}, 0};
        if (const auto number = parseNumber(rest); candidate.numbered && number && *number > 0)
            return Place{candidate.kind, {}, *number};
    }
    if (isCommandText(text))
        return Place{PlaceKind::command, std::string(text), 0};
    return std::nullopt;
}

const FaultKindInfo& kindNamed(std::string_view name, std::string_view fault) {
    const auto* found = std::find_if(std::begin(kKinds), std::end(kKinds),
                                     [name](const FaultKindInfo& kind) { return kind.name == name; });
    if (found == std::end(kKinds))
        refuse(fault, "unknown kind");
    return *found;
}

std::optional<Bytes> parseData(std::string_view text) {
    return text.starts_with("0x") ? parseHex(text.substr(2)) : bytesOf(text);
}

bool takeNumber(Fault& fault, std::string_view value) {
    const auto number = parseNumber(value);
    fault.number = number.value_or(0);
    return number.has_value();
}

bool takeNumberAndPause(Fault& fault, std::string_view value) {
    const std::string_view pauseText = splitOff(value, ',').value_or("");
    const auto pause = pauseText.empty() ? kDefaultSplitPause : parseNumber(pauseText);
    fault.pause = pause.value_or(0);
    return pause && takeNumber(fault, value);
}

bool takeBytes(Fault& fault, const std::optional<Bytes>& bytes) {
    fault.bytes = bytes.value_or(Bytes{});
    return bytes.has_value();
}

bool takeCode(Fault& fault, std::string_view value, std::size_t size) {
    fault.code = value;
    return value.size() == size && isCommandText(value);
}

bool takeValue(Fault& fault, FaultValue form, std::optional<std::string_view> value) {
    if (form == FaultValue::none || !value)
        return form == FaultValue::none && !value;
    switch (form) {
    case FaultValue::none:
        return false;
    case FaultValue::number:
        return takeNumber(fault, *value);
    case FaultValue::byte:
        return takeNumber(fault, *value) && fault.number <= 0xFF;
    case FaultValue::numberAndPause:
        return takeNumberAndPause(fault, *value);
    case FaultValue::hex:
        return takeBytes(fault, parseHex(*value));
    case FaultValue::data:
        return takeBytes(fault, parseData(*value));
    case FaultValue::code2:
        return takeCode(fault, *value, 2);
    case FaultValue::code4:
        return takeCode(fault, *value, 4);
    }
    return false;
}

void takePlace(Fault& fault, std::string_view place) {
    if (const auto times = splitOff(place, '*')) {
        fault.times = times == "all" ? Fault::kAlways : parseNumber(*times).value_or(0);
        if (fault.times == 0)
            refuse(fault.text, "TIMES is a number from 1 or 'all'");
    }
    if (const auto first = splitOff(place, '#')) {
        fault.first = parseNumber(*first).value_or(0);
        if (fault.first == 0)
            refuse(fault.text, "#K is a number from 1");
    }
    const auto parsed = parsePlace(place);
    if (!parsed)
        refuse(fault.text, "unknown place '" + std::string(place) + "'");
    fault.place = *parsed;
}

}  // namespace

Fault parseFault(std::string_view text) {
    Fault fault;
    fault.text = text;
    std::string_view head = text;
    const auto place = splitOff(head, '@');
    if (!place)
        refuse(text, "no @PLACE");
    takePlace(fault, *place);

    const std::size_t colon = head.find(':');
    const FaultKindInfo& info = kindNamed(head.substr(0, colon), text);
    fault.kind = info.kind;
    if (std::find(info.places.begin(), info.places.end(), fault.place.kind) == info.places.end())
        refuse(text, "this kind cannot happen at this place");
    const auto value = colon == std::string_view::npos ? std::nullopt : std::optional(head.substr(colon + 1));
    if (!takeValue(fault, info.value, value))
        refuse(text, "value: " + std::string(info.help));
    return fault;
}

bool matches(const Place& pattern, const Place& place) {
    return pattern.kind == place.kind && place.command.starts_with(pattern.command) &&
           (pattern.number == 0 || pattern.number == place.number);
}

std::string faultHelp() {
    std::string text =
        "A fault is KIND[:VALUE]@PLACE[#K][*TIMES]: it happens TIMES times in a row (1; 'all': always),\n"
        "starting at the K-th occurrence (1) of the place. Faults at one place are combined.\n\nPlaces:\n"
        "  0501, 300551, ...  a request whose command text begins with this\n";
    for (const PlaceName& place : kPlaceNames) {
        std::string name = std::string(place.name) + (place.numbered ? "N" : "");
        name.resize(19, ' ');
        text.append("  ").append(name).append(place.help).append("\n");
    }
    text += "\nKinds (c command, s start, p packet, e eot, b block, u eotN):\n";
    for (const FaultKindInfo& kind : kKinds) {
        std::string name(kind.name);
        name.resize(12, ' ');
        std::string places;
        for (const PlaceKind place : kind.places)
            places += std::string_view("cspebu")[static_cast<std::size_t>(place)];
        places.resize(8, ' ');
        text.append("  ").append(name).append(places).append(kind.help).append("\n");
    }
    return text;
}

}  // namespace units
