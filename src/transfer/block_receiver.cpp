#include "transfer/block_receiver.h"

#include "link/com_port.h"
#include "link/waits.h"
#include "transfer/image_buffers.h"
#include "transfer/xmodem_packet.h"

#include <algorithm>

QByteArray gBlockBuf(1'025, '\0');
int gBlockLen = 0;

using Clock = std::chrono::steady_clock;

// Start of the silence: the last byte of a block or EOT, or the last answer that was sent.
static Clock::time_point silentSince;

// SOH, block number, its complement; data; checksum: a read is never in CRC mode.
static constexpr int kBlockHeader = 3;
static constexpr int kWholeBlock = kBlockHeader + kBlockSize + 1;

void subAnswerSent() { silentSince = Clock::now(); }

void subStartReceive() {
    gBlockLen = 0;
    subAnswerSent();
}

PollResult fncPollReceive() {
    const QByteArray bytes = boundPort().input(boundPort().inBufferCount());
    const PollResult found = takeReceived(bytes);
    // Noise, or a unit that asks for an image itself, would keep the read alive for good.
    const bool goesOn = !bytes.isEmpty() && (found == kIncomplete || found == kBlock || found == kEotCame);
    if (goesOn)
        silentSince = Clock::now();
    return !goesOn && Clock::now() - silentSince >= gWaits.readSilence ? kReceiveTimeOut : found;
}

/// The control byte that `bytes` begin with; kNothing for any other.
static PollResult controlByte(const QByteArray& bytes) {
    if (bytes.isEmpty())
        return kNothing;
    switch (bytes[0]) {
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

/// Appends `bytes` to the block that has begun, as far as the buffer has room.
static PollResult fillBlock(const QByteArray& bytes) {
    const auto taken = std::min<qsizetype>(bytes.size(), gBlockBuf.size() - gBlockLen);
    std::copy_n(bytes.begin(), taken, gBlockBuf.begin() + gBlockLen);
    gBlockLen += static_cast<int>(taken);
    if (gBlockLen == 0)
        return kNothing;
    return gBlockLen >= kWholeBlock ? kBlock : kIncomplete;
}

PollResult takeReceived(const QByteArray& bytes) {
    if (gBlockLen > 0)
        return fillBlock(bytes);
    if (const PollResult control = controlByte(bytes); control != kNothing)
        return control;
    const auto isStart = [](char byte) { return byte == kSoh || byte == kEot; };
    const QByteArray fromStart = bytes.sliced(std::find_if(bytes.begin(), bytes.end(), isStart) - bytes.begin());
    return fromStart.startsWith(kEot) ? kEotCame : fillBlock(fromStart);
}

void subStoreBlock() {
    const auto stored = std::min<qsizetype>(kBlockSize, gReadBuf.size() - gReadCount);
    std::copy_n(gBlockBuf.begin() + kBlockHeader, stored, gReadBuf.begin() + gReadCount);
    gReadCount += static_cast<int>(stored);
    gBlockLen = 0;
}
