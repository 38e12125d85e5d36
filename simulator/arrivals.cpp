#include "simulator/arrivals.h"

#include <algorithm>

namespace units {

namespace {

constexpr Time kMostForgiven = std::chrono::milliseconds(100);

}  // namespace

void Arrivals::forgive(Time lateness) { forgiven_ = std::min(lateness, kMostForgiven); }

void Arrivals::add(std::span<const std::uint8_t> bytes, Time now) {
    Time at = byteTime_ == Time{0} ? now : std::max(lineFree_, now - forgiven_);
    for (const std::uint8_t byte : bytes) {
        at += byteTime_;
        queue_.push_back({byte, at});
    }
    lineFree_ = at;
    forgiven_ = Time{0};
}

}  // namespace units
