/// One way the units behave on the line: answering commands, taking a download, sending an upload. A machine does no
/// I/O and has no clock: it is told what came and when, and returns what to send. While a script is being sent, it is
/// told nothing.
#pragma once

#include "simulator/options.h"
#include "simulator/script.h"

#include <cstdint>
#include <optional>

namespace units {

class Machine {
public:
    virtual ~Machine() = default;

    /// The machine takes over the line.
    virtual Script begin(Time now) = 0;

    /// A byte came.
    virtual Script take(std::uint8_t byte, Time now) = 0;

    /// The last script has been sent.
    virtual void sent(Time now) = 0;

    /// The deadline has passed.
    virtual Script timeout(Time now) = 0;

    virtual std::optional<Time> deadline() const = 0;

    /// The machine gives the line back.
    virtual bool over() const = 0;

    /// The byte that ended this machine but belongs to its successor.
    virtual std::optional<std::uint8_t> handedBack() const { return std::nullopt; }

    /// A file descriptor with output for the line, or -1.
    virtual int descriptor() const { return -1; }

    /// The descriptor has become readable.
    virtual Script readable(Time) { return {}; }
};

}  // namespace units
