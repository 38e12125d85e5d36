/// One way the units behave on the line: answering commands, taking a download, sending an upload. A machine does no
/// input or output and has no clock of its own: it is told what came and when, and returns what to send. While a script
/// is being sent it is told nothing.
#pragma once

#include "simulator/options.h"
#include "simulator/script.h"

#include <cstdint>
#include <optional>

namespace units {

class Machine {
public:
    virtual ~Machine() = default;

    /// The machine has the line now.
    virtual Script begin(Time now) = 0;

    /// A byte came.
    virtual Script take(std::uint8_t byte, Time now) = 0;

    /// The last script has been sent.
    virtual void sent(Time now) = 0;

    /// The moment of the deadline has passed.
    virtual Script timeout(Time now) = 0;

    virtual std::optional<Time> deadline() const = 0;

    /// The machine gives the line back.
    virtual bool over() const = 0;

    /// The byte that ended the machine but is meant for its successor.
    virtual std::optional<std::uint8_t> handedBack() const { return std::nullopt; }

    /// A file descriptor that produces output for the line by itself, or -1.
    virtual int descriptor() const { return -1; }

    /// The descriptor has become readable.
    virtual Script readable(Time) { return {}; }
};

}  // namespace units
