#include "simulator/fault.h"

#include "simulator/fault_kinds.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <stdexcept>

namespace units {

namespace {

constexpr unsigned kDefaultSplitPause = 100;

struct PlaceName {
    std::string_view name;
    PlaceKind kind;
    bool numbered;
    std::string_view help;
};

constexpr PlaceName kPlaceNames[] = {
    {"start", PlaceKind::start, false, "a start character of a download"},
    {"packet", PlaceKind::packet, true, "the arrival of packet N of a download, 1..1920; without N: of any"},
    {"block", PlaceKind::block, true, "the sending of block N of an upload, 1..1920; without N: of any"},
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

/// Splits off what follows the last `mark`; empty if there is no mark.
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
    const auto kinds = faultKinds();
    const auto found =
        std::find_if(kinds.begin(), kinds.end(), [name](const FaultKindInfo& kind) { return kind.name == name; });
    if (found == kinds.end())
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
        "starting at the K-th occurrence (1) of the place. Faults at one place add up.\n\nPlaces:\n"
        "  0501, 300551, ...  a request whose command text begins so\n";
    for (const PlaceName& place : kPlaceNames) {
        std::string name = std::string(place.name) + (place.numbered ? "N" : "");
        name.resize(19, ' ');
        text.append("  ").append(name).append(place.help).append("\n");
    }
    text += "\nKinds (c command, s start, p packet, e eot, b block, u eotN):\n";
    for (const FaultKindInfo& kind : faultKinds()) {
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
