/// The faults that can be simulated, and their notation on the command line.
#pragma once

#include "simulator/bytes.h"

#include <limits>
#include <string>
#include <string_view>

namespace units {

enum class FaultKind {
    silence,
    lost,
    mute,
    delay,
    cut,
    split,
    splitat,
    repeat,
    noise,
    flood,
    answer,
    can,
    nak,
    bcc,
    garble,
    number,
    endcode,
    response,
    data,
    unplug,
    unplugin,
    unplugafter,
};

enum class PlaceKind { command, start, packet, eot, block, uploadEot };

/// A place in the conversation, or a fault's pattern for such places.
struct Place {
    PlaceKind kind = PlaceKind::command;
    std::string command;  ///< command: the text of the request; in a pattern, its prefix
    unsigned number = 0;  ///< packet and block: counted from 1; uploadEot: 1 or 2; in a pattern, 0 matches any
};

/// A fault that the units are to show.
struct Fault {
    static constexpr unsigned kAlways = std::numeric_limits<unsigned>::max();

    std::string text;  ///< as given on the command line
    FaultKind kind = FaultKind::silence;
    unsigned number = 0;  ///< numeric value: milliseconds, bytes or a count
    unsigned pause = 0;   ///< splitat: milliseconds
    Bytes bytes;          ///< noise, answer and data
    std::string code;     ///< endcode and response
    Place place;
    unsigned first = 1;  ///< the first affected occurrence of the place
    unsigned times = 1;  ///< number of consecutive occurrences, or kAlways
};

/// Reads KIND[:VALUE]@PLACE[#K][*TIMES].
/// @throws std::invalid_argument  the text is not of that form, or the kind cannot happen at the place; says why
Fault parseFault(std::string_view text);

/// Whether the pattern matches a place.
bool matches(const Place& pattern, const Place& place);

/// Help text on the grammar, the places and all kinds.
std::string faultHelp();

}  // namespace units
