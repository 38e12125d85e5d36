/// The two directions of the line. With a rate, each byte takes its time.
#pragma once

#include "simulator/bytes.h"
#include "simulator/options.h"
#include "simulator/script.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>

namespace units {

/// Bytes on their way from the client to the units.
class Arrivals {
public:
    struct Arrival {
        std::uint8_t byte;
        Time at;  ///< when its last bit is in
    };

    /// `byteTime`: duration of a byte, 0 on an unlimited line.
    explicit Arrivals(Time byteTime) : byteTime_(byteTime) {}

    /// This program made the client wait, or will notice its next bytes, this much too late. They are counted as that
    /// much earlier, up to a tenth of a second, so that its own delays do not add up.
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

/// Splits scripts into portions of bytes, each with the time at which the client may see it.
class Transmitter {
public:
    /// Bytes to be written at once, and what to do after them.
    struct Portion {
        Time due;  ///< when its last bit is out
        Bytes bytes;
        Time floodUntil;  ///< the portion is repeated until then; 0: written once
        Step::Ending ending;
    };

    /// `byteTime`: duration of a byte, 0 on an unlimited line.
    explicit Transmitter(Time byteTime) : byteTime_(byteTime) {}

    /// Starts sending a script at `from`. Not while busy().
    void load(const Script& script, Time from);

    bool busy() const { return !portions_.empty(); }

    /// Whether no byte of the script has been written yet.
    bool untouched() const { return untouched_; }

    /// Only while busy().
    const Portion& front() const { return portions_.front(); }

    /// The first `count` bytes of the front portion have been written. A complete portion is removed,
    /// unless it is a flood that goes on.
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
