/// The two ways of the line: what comes from the client, and what goes to it. On a line with a rate each byte takes its
/// time.
#pragma once

#include "simulator/bytes.h"
#include "simulator/options.h"
#include "simulator/script.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>

namespace units {

/// Bytes on their way from the client to the units. On a line with a rate each one takes its time.
class Arrivals {
public:
    struct Arrival {
        std::uint8_t byte;
        Time at;  ///< when its last bit is in
    };

    /// `byteTime`: duration of a byte, 0 on an unlimited line.
    explicit Arrivals(Time byteTime) : byteTime_(byteTime) {}

    /// The client was made to wait, or its next bytes are going to be noticed, this much too late. They are counted as
    /// that much earlier, up to a tenth of a second, so that the delays of this program do not add up.
    void forgive(Time lateness);

    /// Bytes the client put on the line by now.
    void add(std::span<const std::uint8_t> bytes, Time now);

    bool empty() const { return queue_.empty(); }
    std::size_t size() const { return queue_.size(); }
    const Arrival& front() const { return queue_.front(); }
    const Arrival& back() const { return queue_.back(); }
    const Arrival& operator[](std::size_t index) const { return queue_[index]; }
    void pop() { queue_.pop_front(); }
    void clear() { queue_.clear(); }

private:
    Time byteTime_;
    Time lineFree_{0};
    Time forgiven_{0};
    std::deque<Arrival> queue_;
};

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
