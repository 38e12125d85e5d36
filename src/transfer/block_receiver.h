/// The receiving side of a read: blocks from the unit, in whatever pieces they come.
///
/// Pure: it takes bytes and the time, and says what they are. No port, no clock, no window.
#pragma once

#include "transfer/xmodem_packet.h"

#include <QByteArray>

#include <chrono>

/// What the input contains.
enum PollResult : int {
    kNothing = 0,  ///< no block has begun
    kBlock = 1,    ///< a complete block, see BlockReceiver::data()
    kAckCame = 2,
    kNakCame = 3,
    kEotCame = 4,
    kStartCame = 5,        ///< "C"
    kIncomplete = 6,       ///< a block has begun
    kReceiveTimeOut = 12,  ///< silence
};

/// Finds blocks and EOTs in the input.
///
/// A block begins with SOH and is complete with its 132nd byte; its number, complement and checksum are not checked.
/// Between blocks, a control byte at the start of a piece counts and the rest of the piece is dropped; any other byte
/// before SOH or EOT is noise.
class BlockReceiver {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// @param silence  time-out after the last answer or the last byte of a block
    /// @param now      start of the time-out
    BlockReceiver(std::chrono::milliseconds silence, Time now) : silence_(silence), lastSign_(now) {}

    /// Takes what has come in since the last call, if anything. What follows a complete block in `bytes` is dropped.
    PollResult take(const QByteArray& bytes, Time now);

    /// An answer has been sent: restarts the time-out.
    void answered(Time now) { lastSign_ = now; }

    /// The data of the block that the last call found, kBlockSize bytes.
    QByteArray data() const { return block_.mid(kBlockHeader, kBlockSize); }

private:
    PollResult find(const QByteArray& bytes);
    PollResult fill(const QByteArray& bytes);

    const std::chrono::milliseconds silence_;
    Time lastSign_;
    QByteArray block_;  ///< the current block so far
};
