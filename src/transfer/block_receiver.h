/// The receiving side of a read: blocks from the unit, in as many pieces as the line makes of them.
#pragma once

#include <QByteArray>

/// What a look at the input finds.
enum PollResult : int {
    kNothing = 0,  ///< nothing is waiting and no block has begun
    kBlock = 1,    ///< a whole block is in gBlockBuf
    kAckCame = 2,
    kNakCame = 3,
    kEotCame = 4,
    kStartCame = 5,        ///< "C"
    kIncomplete = 6,       ///< a block has begun
    kReceiveTimeOut = 12,  ///< silence for gWaits.readSilence
};

/// The block that is being received.
extern QByteArray gBlockBuf;
/// Number of bytes of it that have come.
extern int gBlockLen;

/// Forgets a block that has begun, and counts the silence from now on; called when a read starts.
void subStartReceive();

/// Counts the silence from now on; called when an answer has been sent.
void subAnswerSent();

/// Looks once at the serial input, without waiting.
///
/// A block begins with SOH and is complete with its 132nd byte. Where none has begun, a control byte at the front
/// counts as such, and what comes with it is dropped; any other byte before SOH or EOT is noise. Only a block or EOT
/// ends the silence.
/// @throws RuntimeFailure  the port is closed or gone
PollResult fncPollReceive();

/// Takes received bytes, none included, into the block or as a control byte. Pure but for gBlockBuf and gBlockLen.
PollResult takeReceived(const QByteArray& bytes);

/// Appends the data of the block in gBlockBuf to gReadBuf, as far as it has room, and begins the next block.
void subStoreBlock();
