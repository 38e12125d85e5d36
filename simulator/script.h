/// What the units send, and when.
#pragma once

#include "simulator/bytes.h"
#include "simulator/fault_book.h"
#include "simulator/options.h"

#include <vector>

namespace units {

/// Sent in this order: the pause, the flood, the bytes, the ending.
struct Step {
    enum class Ending { none, unplug, mute };

    Time pause{0};
    Time flood{0};
    Bytes bytes{};
    Ending ending = Ending::none;
};

/// An answer of the units, as it goes out on the line. No steps: nothing to answer yet; a step without bytes: an answer
/// that is withheld.
struct Script {
    std::vector<Step> steps;
    bool excusesEarlyBytes = false;  ///< the client may send before the answer is complete
};

/// The answer with the faults applied. Faults that change what a unit does, not what it sends, are up to the caller.
Script shape(Bytes answer, const ActiveFaults& faults);

/// All bytes of a script in order, without floods.
Bytes bytesOf(const Script& script);

}  // namespace units
