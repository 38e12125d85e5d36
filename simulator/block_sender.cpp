#include "simulator/block_sender.h"

#include "simulator/fault.h"
#include "simulator/image.h"
#include "simulator/wire.h"

#include <span>

namespace units {

BlockSender::BlockSender(Bytes image, unsigned blocks, bool unsure, FaultBook& faults, Journal& journal,
                         const Timing& timing)
    : XmodemUnit("upload", unsure, faults, journal, timing), image_(std::move(image)), blocks_(blocks) {}

Script BlockSender::begin(Time now) {
    deadline_ = now + timing_.uploadStartWait;
    return {};
}

Script BlockSender::take(std::uint8_t byte, Time now) {
    if (byte == kCan) {
        takeCancel(now);
        return {};
    }
    singleCancel(now);
    if (byte == kNak)
        return refused(now);
    if (byte == kAck && state_ != State::starting)
        return accepted(now);
    if (returnsToCommands(byte, now))
        return {};
    if (!astray_)
        journal_.violation(now, "unexpected answer to a block: " + hexNumber(byte, 2));
    astray_ = true;
    return {};
}

void BlockSender::sent(Time now) {
    if (over())
        deadline_.reset();
    else
        deadline_ = now + timing_.answerWait;
}

Script BlockSender::timeout(Time now) {
    if (state_ == State::starting) {
        end("upload given up: the client did not start it", now);
        return {};
    }
    return repeat("no answer", now);
}

Script BlockSender::accepted(Time now) {
    if (state_ == State::sending) {
        journal_.received(now, "ACK of block " + std::to_string(block_));
        return next(now);
    }
    if (++eotAnswers_ == 1 && !unsure_)
        journal_.violation(now, "ACK of the first EOT");
    end("upload complete", now);
    return {};
}

Script BlockSender::refused(Time now) {
    switch (state_) {
    case State::starting:
        journal_.received(now, "NAK that starts the upload");
        return next(now);
    case State::sending:
        return repeat("NAK", now);
    case State::ending:
        if (++eotAnswers_ > 1 && !unsure_)
            journal_.violation(now, "NAK of an EOT after the first");
        return repeat("NAK", now);
    }
    return {};
}

Script BlockSender::next(Time now) {
    repeats_ = 0;
    astray_ = false;
    if (block_ == blocks_) {
        state_ = State::ending;
        return sendEot(now);
    }
    state_ = State::sending;
    ++block_;
    return sendBlock(now);
}

Script BlockSender::repeat(const char* reason, Time now) {
    journal_.received(now, std::string(reason) + " -> again");
    if (++repeats_ > timing_.blockTries) {
        end("upload given up: too many repeats", now);
        return {};
    }
    return state_ == State::ending ? sendEot(now) : sendBlock(now);
}

Script BlockSender::sendBlock(Time now) {
    const ActiveFaults faults = faults_.occur({PlaceKind::block, {}, block_});
    Bytes bytes = encodeBlock(faults);
    const std::string meaning = "block " + std::to_string(block_) + " (number " + std::to_string(bytes[1]) + "), " +
                                std::to_string(bytes.size()) + " bytes";
    return send(std::move(bytes), meaning, faults, now);
}

Script BlockSender::sendEot(Time now) {
    ++eots_;
    const ActiveFaults faults = faults_.occur({PlaceKind::uploadEot, {}, eots_});
    return send({kEot}, "EOT " + std::to_string(eots_), faults, now);
}

Bytes BlockSender::encodeBlock(const ActiveFaults& faults) const {
    const Fault* other = faults.find(FaultKind::number);
    const auto number = static_cast<std::uint8_t>(other == nullptr ? block_ : other->number);
    const auto payload = std::span(image_).subspan((block_ - 1) * kBlockSize, kBlockSize);
    Bytes bytes;
    bytes.reserve(kBlockSize + 4);
    bytes.push_back(kSoh);
    bytes.push_back(number);
    bytes.push_back(static_cast<std::uint8_t>(0xFF - number));
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    bytes.push_back(sum8(payload));
    return bytes;
}

Script BlockSender::send(Bytes bytes, const std::string& meaning, const ActiveFaults& faults, Time now) {
    mind(faults);
    journal_.sent(now, faults.empty() ? meaning : meaning + ", fault " + faults.text());
    Script script = shape(std::move(bytes), faults);
    script.excusesEarlyBytes = outOfStep_;
    return script;
}

}  // namespace units
