/// What both directions of an XMODEM transfer share: the end, the client's CANs, and what faults excuse.
#pragma once

#include "simulator/fault_book.h"
#include "simulator/journal.h"
#include "simulator/machine.h"
#include "simulator/options.h"

#include <string>

namespace units {

class XmodemUnit : public Machine {
public:
    std::optional<Time> deadline() const final { return deadline_; }
    bool over() const final { return over_; }
    std::optional<std::uint8_t> handedBack() const final { return handedBack_; }

protected:
    /// @param name    "download" or "upload"
    /// @param unsure  because of a fault the client may not know that the transfer has started
    XmodemUnit(const char* name, bool unsure, FaultBook& faults, Journal& journal, const Timing& timing)
        : faults_(faults), journal_(journal), timing_(timing), unsure_(unsure), name_(name) {}

    /// A CAN came; the second one in a row ends the transfer.
    void takeCancel(Time now);
    /// The next byte is not a CAN.
    /// @return whether a single CAN preceded it, which is a violation
    bool singleCancel(Time now);
    void forgetCancel() { cancels_ = 0; }
    /// Whether the byte begins a command of a client that does not know of the transfer; if so, the transfer ends.
    bool returnsToCommands(std::uint8_t byte, Time now);
    /// Records what `faults` excuse from now on; CANs from the unit end the transfer.
    void mind(const ActiveFaults& faults);
    /// Ends the transfer; the journal says why.
    void end(const std::string& reason, Time now);

    FaultBook& faults_;
    Journal& journal_;
    const Timing timing_;
    std::optional<Time> deadline_;
    bool unsure_;             ///< the client may believe that the transfer has ended or never started
    bool outOfStep_ = false;  ///< because of a fault the client may be one answer ahead or behind

private:
    const char* name_;
    bool over_ = false;
    unsigned cancels_ = 0;
    std::optional<std::uint8_t> handedBack_;
};

}  // namespace units
