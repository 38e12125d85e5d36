#pragma once

#include "simulator/bytes.h"
#include "simulator/options.h"
#include "simulator/script.h"

#include <cstddef>
#include <deque>

namespace units {

/// Turns scripts into portions of bytes with the moments at which the client may see them.
class Transmitter {
public:
    /// Bytes to be written at once, and what to do after them.
    struct Portion {
        Time due;  ///< when the last bit of the portion is out
        Bytes bytes;
        Time floodUntil;  ///< the portion is written again and again until then; 0: once
        Step::Ending ending;
    };

    /// `byteTime`: duration of a byte, 0 on an unlimited line.
    explicit Transmitter(Time byteTime) : byteTime_(byteTime) {}

    /// Sends a script from a moment on. Not while busy().
    void load(const Script& script, Time from);

    bool busy() const { return !portions_.empty(); }

    /// Whether no byte of the script has been written yet.
    bool untouched() const { return untouched_; }

    /// Only while busy().
    const Portion& front() const { return portions_.front(); }

    /// The first `count` bytes of the front portion have been written. A portion that is complete goes, unless it
    /// is a flood that lasts.
    void written(std::size_t count, Time now);

    /// Drops everything.
    void clear() { portions_.clear(); }

private:
    void addBytes(const Bytes& bytes);
    void addFlood(Time duration);

    Time byteTime_;
    Time end_{0};
    bool untouched_ = false;
    std::deque<Portion> portions_;
};

}  // namespace units
