#include "transfer/block_receiver.h"

#include <algorithm>

PollResult BlockReceiver::take(const QByteArray& bytes, Time now) {
    if (block_.size() == kChecksumPacketSize)
        block_.clear();
    const PollResult found = find(bytes);
    // Otherwise noise, or a unit that itself asks for an image, would keep the read going forever.
    const bool goesOn = !bytes.isEmpty() && (found == kIncomplete || found == kBlock || found == kEotCame);
    if (goesOn)
        lastSign_ = now;
    return !goesOn && now - lastSign_ >= silence_ ? kReceiveTimeOut : found;
}

/// The control byte at the start of `bytes`; kNothing if it is none.
static PollResult controlByte(const QByteArray& bytes) {
    switch (bytes.isEmpty() ? '\0' : bytes[0]) {
    case kAck:
        return kAckCame;
    case kNak:
        return kNakCame;
    case kEot:
        return kEotCame;
    case kCrcStart:
        return kStartCame;
    default:
        return kNothing;
    }
}

PollResult BlockReceiver::find(const QByteArray& bytes) {
    if (!block_.isEmpty())
        return fill(bytes);
    if (const PollResult control = controlByte(bytes); control != kNothing)
        return control;
    const auto isStart = [](char byte) { return byte == kSoh || byte == kEot; };
    const QByteArray fromStart = bytes.sliced(std::find_if(bytes.begin(), bytes.end(), isStart) - bytes.begin());
    return fromStart.startsWith(kEot) ? kEotCame : fill(fromStart);
}

/// Appends `bytes` to the current block, up to its end.
PollResult BlockReceiver::fill(const QByteArray& bytes) {
    block_ += bytes.left(kChecksumPacketSize - block_.size());
    if (block_.isEmpty())
        return kNothing;
    return block_.size() == kChecksumPacketSize ? kBlock : kIncomplete;
}
