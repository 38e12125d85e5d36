#include "simulator/packet_receiver.h"

#include "simulator/fault.h"
#include "simulator/image.h"
#include "simulator/wire.h"

#include <algorithm>
#include <span>

namespace units {

namespace {

constexpr std::size_t kHeaderSize = 3;

/// Kinds that make the units ignore the packet or EOT.
bool withholdsResult(const ActiveFaults& faults) {
    using enum FaultKind;
    constexpr FaultKind kWithholding[] = {silence, nak, can, unplug, mute};
    return std::any_of(std::begin(kWithholding), std::end(kWithholding),
                       [&](FaultKind kind) { return faults.has(kind); });
}

std::string withFaults(const std::string& meaning, const ActiveFaults& faults, const char* answer) {
    return meaning + " -> " + (faults.empty() ? answer : "fault " + faults.text());
}

}  // namespace

PacketReceiver::PacketReceiver(CheckMode mode, bool unsure, FaultBook& faults, Journal& journal, const Timing& timing,
                               Accept accept)
    : XmodemUnit("download", unsure, faults, journal, timing), mode_(mode), accept_(std::move(accept)) {
    image_.reserve(kImageSize);
}

Script PacketReceiver::begin(Time now) { return askForStart(now); }

Script PacketReceiver::take(std::uint8_t byte, Time now) {
    switch (state_) {
    case State::inside:
        return takeInside(byte, now);
    case State::purging:
        return takePurging(byte, now);
    case State::starting:
    case State::between:
    case State::lingering:
        break;
    }
    return takeBetween(byte, now);
}

void PacketReceiver::sent(Time now) {
    if (over())
        deadline_.reset();
    else
        deadline_ = now + (state_ == State::starting ? timing_.startInterval : timing_.packetWait);
}

Script PacketReceiver::timeout(Time now) {
    singleCancel(now);
    switch (state_) {
    case State::inside:
        return brokenOff(now);
    case State::lingering:
        end("download complete", now);
        return {};
    case State::purging:
        state_ = blocks_ == 0 ? State::starting : State::between;
        return retry(now);
    case State::starting:
    case State::between:
        break;
    }
    return retry(now);
}

Script PacketReceiver::askForStart(Time now) {
    ++tries_;
    const std::uint8_t start = mode_ == CheckMode::crc ? kCrcStart : kNak;
    const ActiveFaults faults = faults_.occur({PlaceKind::start, {}, 0});
    journal_.sent(now, withFaults("start character", faults, mode_ == CheckMode::crc ? "C" : "NAK"));
    return answerControl(start, faults);
}

Script PacketReceiver::takeBetween(std::uint8_t byte, Time now) {
    if (byte == kCan) {
        deadline_ = now + timing_.byteGap;
        takeCancel(now);
        return {};
    }
    if (singleCancel(now))
        return purge(now);
    if (returnsToCommands(byte, now))
        return {};
    if (byte == kEot)
        return endOfTransfer(now);
    if (byte != kSoh)
        return refuse("byte between packets: " + hexNumber(byte, 2), now);
    state_ = State::inside;
    packet_.assign(1, byte);
    firstPacket_ = firstPacket_.value_or(now);
    packetFaults_ = {};
    deadline_ = now + timing_.byteGap;
    return {};
}

Script PacketReceiver::takeInside(std::uint8_t byte, Time now) {
    packet_.push_back(byte);
    deadline_ = now + timing_.byteGap;
    if (packet_.size() == kHeaderSize)
        packetFaults_ = faultsOfPacket();
    if (packet_.size() == packetSize())
        return packet(now);
    if (packet_.size() == packetSize() / 2 && packetFaults_.has(FaultKind::unplugin)) {
        journal_.note(now, "unplugged in the middle of packet " + std::to_string(blocks_ + 1));
        return shape({}, packetFaults_);
    }
    return {};
}

Script PacketReceiver::takePurging(std::uint8_t byte, Time now) {
    deadline_ = now + timing_.byteGap;
    if (byte == kCan)
        takeCancel(now);
    else
        forgetCancel();
    return {};
}

Script PacketReceiver::packet(Time now) {
    state_ = State::between;
    tries_ = 0;
    if (const std::string flaw = packetFlaw(); !flaw.empty()) {
        journal_.violation(now, "packet after " + std::to_string(blocks_) + " blocks: " + flaw + " -> NAK");
        mayRepeat_ = true;
        return answerControl(kNak, {});
    }
    const std::uint8_t number = packet_[1];
    if (number == ((blocks_ + 1) & 0xFF) && blocks_ < kImageBlocks)
        return newPacket(now);
    if (number == (blocks_ & 0xFF) && blocks_ > 0)
        return repeatedPacket(now);
    return refuse("packet number " + std::to_string(number) + " after " + std::to_string(blocks_) + " blocks", now);
}

std::string PacketReceiver::packetFlaw() const {
    if ((packet_[1] ^ packet_[2]) != 0xFF)
        return "number and complement do not match: " + hexDump(std::span(packet_).subspan(1, 2));
    const auto payload = std::span(packet_).subspan(kHeaderSize, kBlockSize);
    const auto check = std::span(packet_).subspan(kHeaderSize + kBlockSize);
    const unsigned expected = mode_ == CheckMode::crc ? crc16(payload) : sum8(payload);
    const unsigned found = mode_ == CheckMode::crc ? static_cast<unsigned>(check[0] << 8 | check[1]) : check[0];
    if (found != expected)
        return "check value " + hexNumber(found, 4) + " instead of " + hexNumber(expected, 4);
    return {};
}

Script PacketReceiver::newPacket(Time now) {
    const std::string meaning = "packet " + std::to_string(blocks_ + 1) + " (number " + std::to_string(packet_[1]) +
                                "), " + std::to_string(packet_.size()) + " bytes, ok";
    if (!withholdsResult(packetFaults_)) {
        image_.insert(image_.end(), packet_.begin() + kHeaderSize, packet_.begin() + kHeaderSize + kBlockSize);
        ++blocks_;
    }
    mayRepeat_ = false;
    return answerPacket(meaning, now);
}

Script PacketReceiver::repeatedPacket(Time now) {
    if (!mayRepeat_ && !outOfStep_)
        journal_.violation(now, "packet " + std::to_string(blocks_) + " sent again without reason");
    return answerPacket("packet " + std::to_string(blocks_) + " again, not stored", now);
}

Script PacketReceiver::answerPacket(const std::string& meaning, Time now) {
    journal_.received(now, withFaults(meaning, packetFaults_, "ACK"));
    mayRepeat_ = mayRepeat_ || !packetFaults_.empty();
    return answerControl(packetFaults_.has(FaultKind::nak) ? kNak : kAck, packetFaults_);
}

Script PacketReceiver::endOfTransfer(Time now) {
    if (blocks_ != kImageBlocks) {
        journal_.violation(now, "EOT after " + std::to_string(blocks_) + " blocks -> NAK");
        return answerControl(kNak, {});
    }
    const ActiveFaults faults = faults_.occur({PlaceKind::eot, {}, 0});
    journal_.received(now, withFaults("EOT after 1920 blocks", faults, "ACK"));
    if (!withholdsResult(faults)) {
        if (!accepted_)
            accept_(image_, now - firstPacket_.value_or(now));
        accepted_ = true;
        state_ = State::lingering;
        if (faults.empty())
            end("download complete", now);
    }
    return answerControl(faults.has(FaultKind::nak) ? kNak : kAck, faults);
}

Script PacketReceiver::brokenOff(Time now) {
    state_ = State::between;
    // A client that discards its output and cancels leaves such a packet behind.
    if (packet_.size() > 2 && packet_.back() == kCan && packet_[packet_.size() - 2] == kCan) {
        end("download cancelled by the client within a packet", now);
        return {};
    }
    journal_.violation(now, "packet incomplete after " + std::to_string(packet_.size()) + " bytes -> NAK");
    mayRepeat_ = true;
    return answerControl(kNak, {});
}

Script PacketReceiver::answerControl(std::uint8_t control, const ActiveFaults& faults) {
    mind(faults);
    Script script = faults.has(FaultKind::silence) ? Script{{Step{}}} : shape({control}, faults);
    // A client that does not know of the download may be sending a command at this moment.
    script.excusesEarlyBytes = outOfStep_ || (unsure_ && state_ == State::starting);
    return script;
}

Script PacketReceiver::refuse(const std::string& reason, Time now) {
    journal_.violation(now, reason);
    forgetCancel();
    return purge(now);
}

Script PacketReceiver::purge(Time now) {
    state_ = State::purging;
    deadline_ = now + timing_.byteGap;
    return {};
}

Script PacketReceiver::retry(Time now) {
    const bool starting = state_ == State::starting;
    if (tries_ >= (starting ? timing_.startTries : timing_.packetTries)) {
        end("download given up: the client is silent", now);
        return {};
    }
    if (starting)
        return askForStart(now);
    ++tries_;
    mayRepeat_ = true;
    outOfStep_ = true;
    journal_.note(now, "no packet -> NAK");
    return answerControl(kNak, {});
}

ActiveFaults PacketReceiver::faultsOfPacket() {
    if (packet_[1] == ((blocks_ + 1) & 0xFF))
        return faults_.occur({PlaceKind::packet, {}, blocks_ + 1});
    if (packet_[1] == (blocks_ & 0xFF) && blocks_ > 0)
        return faults_.occur({PlaceKind::packet, {}, blocks_});
    return {};
}

}  // namespace units
