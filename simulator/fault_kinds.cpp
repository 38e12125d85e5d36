#include "simulator/fault_kinds.h"

namespace units {

namespace {

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
    {FaultKind::silence, "silence", FaultValue::none, kRequests, "neither obeyed nor answered"},
    {FaultKind::lost, "lost", FaultValue::none, kEverywhere, "obeyed, but the answer (or block) is not sent"},
    {FaultKind::mute, "mute", FaultValue::none, kEverywhere, "nothing is sent or heard from here on"},
    {FaultKind::delay, "delay", FaultValue::number, kEverywhere, "MS: sent this many milliseconds late"},
    {FaultKind::cut, "cut", FaultValue::number, kLong, "N: stops after N bytes"},
    {FaultKind::split, "split", FaultValue::number, kLong, "MS: byte by byte, with this gap in milliseconds"},
    {FaultKind::splitat, "splitat", FaultValue::numberAndPause, kLong,
     "N[,MS]: in two parts, the first of N bytes, with this gap (100)"},
    {FaultKind::repeat, "repeat", FaultValue::none, kEverywhere, "sent twice"},
    {FaultKind::noise, "noise", FaultValue::hex, kEverywhere, "HEX: these bytes are sent first"},
    {FaultKind::flood, "flood", FaultValue::number, kEverywhere, "MS: bytes 55 without pause for this time first"},
    {FaultKind::answer, "answer", FaultValue::hex, kEverywhere, "HEX: obeyed, but these bytes are sent instead"},
    {FaultKind::can, "can", FaultValue::number, kTransfer,
     "N: not obeyed, N bytes CAN instead; two or more end the transfer"},
    {FaultKind::nak, "nak", FaultValue::none, kDownload, "not obeyed, answered with NAK"},
    {FaultKind::bcc, "bcc", FaultValue::none, kLong, "the check byte is wrong"},
    {FaultKind::garble, "garble", FaultValue::none, kLong, "a byte in the middle is damaged"},
    {FaultKind::number, "number", FaultValue::byte, kBlocks, "N: sent under this number, 0..255"},
    {FaultKind::endcode, "endcode", FaultValue::code2, kFrames, "XX: not obeyed, the reply has this end code"},
    {FaultKind::response, "response", FaultValue::code4, kFrames,
     "XXXX: refused with end code 0F and this response code, no data"},
    {FaultKind::data, "data", FaultValue::data, kFrames, "TEXT or 0xHEX: obeyed, the reply has this data"},
    {FaultKind::unplug, "unplug", FaultValue::none, kEverywhere, "the port goes before the answer, nothing is obeyed"},
    {FaultKind::unplugin, "unplugin", FaultValue::none, kHalves,
     "the port goes in the middle of the reply, packet or block"},
    {FaultKind::unplugafter, "unplugafter", FaultValue::none, kEverywhere, "the port goes after the answer"},
};

}  // namespace

std::span<const FaultKindInfo> faultKinds() { return kKinds; }

}  // namespace units
