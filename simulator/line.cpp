#include "simulator/line.h"

#include <algorithm>

namespace units {

namespace {

constexpr Time kMaxForgiven = std::chrono::milliseconds(100);

/// Bytes that the client sees at a time on a line with a rate.
constexpr std::size_t kPortionSize = 16;

constexpr std::uint8_t kFloodByte = 0x55;

}  // namespace

void Arrivals::forgive(Time lateness) { forgiven_ = std::min(lateness, kMaxForgiven); }

void Arrivals::add(std::span<const std::uint8_t> bytes, Time now) {
    Time at = byteTime_ == Time{0} ? now : std::max(lineFree_, now - forgiven_);
    for (const std::uint8_t byte : bytes) {
        at += byteTime_;
        queue_.push_back({byte, at});
    }
    lineFree_ = at;
    forgiven_ = Time{0};
}

void Transmitter::load(const Script& script, Time from) {
    end_ = std::max(end_, from);
    untouched_ = true;
    for (const Step& step : script.steps) {
        end_ += step.pause;
        if (step.flood > Time{0})
            addFlood(step.flood);
        addBytes(step.bytes);
        portions_.back().ending = step.ending;
    }
}

void Transmitter::written(std::size_t count, Time now) {
    untouched_ = false;
    Portion& portion = portions_.front();
    if (portion.floodUntil > Time{0}) {
        portion.due = byteTime_ == Time{0} ? now : portion.due + static_cast<Time::rep>(count) * byteTime_;
        if (std::max(portion.due, now) > portion.floodUntil)
            portions_.pop_front();
        return;
    }
    portion.bytes.erase(portion.bytes.begin(), portion.bytes.begin() + static_cast<std::ptrdiff_t>(count));
    if (portion.bytes.empty())
        portions_.pop_front();
}

void Transmitter::addBytes(const Bytes& bytes) {
    const std::size_t size = byteTime_ == Time{0} ? std::max<std::size_t>(bytes.size(), 1) : kPortionSize;
    std::size_t at = 0;
    do {
        const std::size_t count = std::min(size, bytes.size() - at);
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(at);
        end_ += static_cast<Time::rep>(count) * byteTime_;
        portions_.push_back({end_, Bytes(begin, begin + static_cast<std::ptrdiff_t>(count)), Time{0}, {}});
        at += count;
    } while (at < bytes.size());
}

void Transmitter::addFlood(Time duration) {
    const Time first = end_ + static_cast<Time::rep>(kPortionSize) * byteTime_;
    end_ += duration;
    portions_.push_back({first, Bytes(kPortionSize, kFloodByte), end_, {}});
}

}  // namespace units
