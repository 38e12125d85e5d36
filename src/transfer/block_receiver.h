/// The receiving side of a read: blocks from the unit, in as many pieces as the line makes of them.
///
/// Pure: it takes bytes and the time, and says what they are. No port, no clock, no window.
#pragma once

#include "transfer/xmodem_packet.h"

#include <QByteArray>

#include <chrono>

/// What a look at the input finds.
enum PollResult : int {
    kNothing = 0,  ///< no block has begun
    kBlock = 1,    ///< a block is whole, see BlockReceiver::data()
    kAckCame = 2,
    kNakCame = 3,
    kEotCame = 4,
    kStartCame = 5,        ///< "C"
    kIncomplete = 6,       ///< a block has begun
    kReceiveTimeOut = 12,  ///< silence
};

/// Finds blocks and EOTs in what comes in.
///
/// A block begins with SOH and is whole with its 132nd byte; its number, complement and checksum are not looked at.
/// Where none has begun, a control byte at the front of a piece counts as such, and what comes with it is dropped; any
/// other byte before SOH or EOT is noise.
class BlockReceiver {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// @param silence  so long after the last answer, or the last byte of a block, the unit is silent
    /// @param now      the silence counts from then on
    BlockReceiver(std::chrono::milliseconds silence, Time now) : silence_(silence), lastSign_(now) {}

    /// Takes what has come in since the last call, nothing included. What follows a whole block in `bytes` is dropped.
    PollResult take(const QByteArray& bytes, Time now);

    /// An answer has been sent: the silence counts from `now` on.
    void answered(Time now) { lastSign_ = now; }

    /// The data of the block that the last call has found, kBlockSize bytes.
    QByteArray data() const { return block_.mid(kBlockHeader, kBlockSize); }

private:
    PollResult find(const QByteArray& bytes);
    PollResult fill(const QByteArray& bytes);

    const std::chrono::milliseconds silence_;
    Time lastSign_;
    QByteArray block_;  ///< what has come of the block that has begun
};
