#include "transfer/block_receiver.h"

#include "link/com_port.h"
#include "link/waits.h"
#include "transfer/image_buffers.h"
#include "transfer/xmodem_packet.h"

#include <algorithm>

QByteArray gBlockBuf(1'025, '\0');
int gBlockLen = 0;

using Clock = std::chrono::steady_clock;

// Start of the silence: the last byte that came, or the last answer that was sent.
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
    if (!bytes.isEmpty()) {
        silentSince = Clock::now();
        return takeReceived(bytes);
    }
    if (Clock::now() - silentSince >= gWaits.readSilence)
        return kReceiveTimeOut;
    return gBlockLen < 1 ? kNothing : kIncomplete;
}

PollResult takeReceived(const QByteArray& bytes) {
    if (gBlockLen == 0) {
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
            break;
        }
    }
    const auto taken = std::min<qsizetype>(bytes.size(), gBlockBuf.size() - gBlockLen);
    std::copy_n(bytes.begin(), taken, gBlockBuf.begin() + gBlockLen);
    gBlockLen += static_cast<int>(taken);
    return gBlockLen >= kWholeBlock ? kBlock : kIncomplete;
}

void subStoreBlock() {
    const auto stored = std::min<qsizetype>(kBlockSize, gReadBuf.size() - gReadCount);
    std::copy_n(gBlockBuf.begin() + kBlockHeader, stored, gReadBuf.begin() + gReadCount);
    gReadCount += static_cast<int>(stored);
    gBlockLen = 0;
}
