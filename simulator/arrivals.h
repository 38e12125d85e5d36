#pragma once

#include "simulator/options.h"

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

}  // namespace units
