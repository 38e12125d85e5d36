/// What can go wrong, and how it is written on the command line.
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

/// Where in the conversation something happens, or the pattern of such places in a fault.
struct Place {
    PlaceKind kind = PlaceKind::command;
    std::string command;  ///< command: the text of the request; in a pattern the beginning of it
    unsigned number = 0;  ///< packet and block: counted from 1; uploadEot: 1 or 2; in a pattern 0 stands for any
};

/// A fault of the units that the simulation is told to show.
struct Fault {
    static constexpr unsigned kAlways = std::numeric_limits<unsigned>::max();

    std::string text;  ///< as it was written
    FaultKind kind = FaultKind::silence;
    unsigned number = 0;  ///< numeric value: milliseconds, bytes or a count
    unsigned pause = 0;   ///< splitat: milliseconds
    Bytes bytes;          ///< noise, answer and data
    std::string code;     ///< endcode and response
    Place place;
    unsigned first = 1;  ///< the occurrence of the place it starts at
    unsigned times = 1;  ///< number of occurrences in a row, or kAlways
};

/// Reads KIND[:VALUE]@PLACE[#K][*TIMES].
/// @throws std::invalid_argument  the text is not of that form, or the kind cannot happen at the place; says why
Fault parseFault(std::string_view text);

/// Whether a place is one that the pattern stands for.
bool matches(const Place& pattern, const Place& place);

/// Describes the grammar, the places and all kinds, for people.
std::string faultHelp();

}  // namespace units
