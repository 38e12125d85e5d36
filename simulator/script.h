/// What the units send, and when.
#pragma once

#include "simulator/bytes.h"
#include "simulator/fault_book.h"
#include "simulator/options.h"

#include <vector>

namespace units {

/// Something sent in one go: first the pause, then the flood, then the bytes, then the ending.
struct Step {
    enum class Ending { none, unplug, mute };

    Time pause{0};
    Time flood{0};
    Bytes bytes{};
    Ending ending = Ending::none;
};

/// An answer of the units, as it goes out on the line. Without steps there is nothing to answer yet; a step without
/// bytes is an answer that is kept back.
struct Script {
    std::vector<Step> steps;
    bool excusesEarlyBytes = false;  ///< the client may send before the answer is complete
};

/// The answer with the faults of the place laid over it. Faults that change what a unit does, not what it sends, are
/// left to the caller.
Script shape(Bytes answer, const ActiveFaults& faults);

/// All bytes of a script in order, without floods.
Bytes bytesOf(const Script& script);

}  // namespace units
