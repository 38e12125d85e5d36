#include "simulator/xmodem_unit.h"

#include "simulator/fault.h"
#include "simulator/wire.h"

#include <utility>

namespace units {

void XmodemUnit::takeCancel(Time now) {
    if (++cancels_ == 2)
        end(std::string(name_) + " cancelled by the client", now);
}

bool XmodemUnit::singleCancel(Time now) {
    const bool single = std::exchange(cancels_, 0) > 0;
    if (single)
        journal_.violation(now, "a single CAN");
    return single;
}

bool XmodemUnit::returnsToCommands(std::uint8_t byte, Time now) {
    if (byte != kStx || !unsure_)
        return false;
    handedBack_ = byte;
    end("the client returns to commands", now);
    return true;
}

void XmodemUnit::mind(const ActiveFaults& faults) {
    unsure_ = unsure_ || !faults.empty();
    outOfStep_ = outOfStep_ || faults.upsetOrder();
    if (const Fault* cancel = faults.find(FaultKind::can); cancel != nullptr && cancel->number >= 2)
        over_ = true;
}

void XmodemUnit::end(const std::string& reason, Time now) {
    journal_.note(now, reason);
    over_ = true;
    deadline_.reset();
}

}  // namespace units
