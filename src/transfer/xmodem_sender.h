/// XMODEM sender: an image in 128-byte packets, with the check that the receiver asks for.
///
/// Pure: it takes what came and returns what to do. No port, no clock, no window.
#pragma once

#include "system/runtime_failure.h"
#include "transfer/xmodem_packet.h"

#include <QByteArray>

#include <chrono>
#include <optional>

/// Failure numbers of a send; any other number is a port error.
enum XmodemResult : int { kXmodemRefused = 4097, kXmodemNoAnswer = 4098, kXmodemCancelled = 4099 };

/// What the line is to do for the sender, in this order.
struct SendOrder {
    bool clearInput = false;            ///< discard what has come in so far
    QByteArray packet{};                ///< discard it too, then send this in one write; empty: nothing
    std::chrono::milliseconds wait{0};  ///< then wait this long for one byte
};

/// One send of an image.
///
///     awaits start --"C", NAK--> awaits answer to packet 1 --ACK--> ... --> packet 1920 --ACK--> EOT --ACK--> done
///           `--------------------------`--- ten refusals or silences, two CANs ----------------------`------> failed
///
/// Every byte and every time-out results in an order. After the end of the send, an order at most clears the input.
class XmodemSender {
public:
    /// @param image   to send its first kPackets * kBlockSize bytes; must outlive the sender
    /// @param start   time-out for the receiver's start character
    /// @param answer  time-out for the answer to a packet
    XmodemSender(const QByteArray& image, std::chrono::milliseconds start, std::chrono::milliseconds answer)
        : image_(image), startWait_(start), answerWait_(answer) {}

    /// The first order: wait for the receiver's start character.
    SendOrder begin() const;
    /// Takes the byte that came within the wait of the last order.
    SendOrder take(char byte);
    /// The wait of the last order has passed without a byte.
    SendOrder timeUp();

    bool hasEnded() const { return sent_ || failure_.has_value(); }
    /// Why the send failed: where, how often, what the unit answered. None while it runs or if it succeeded.
    const std::optional<RuntimeFailure>& failure() const { return failure_; }
    /// Bytes of the image that the receiver has acknowledged.
    int acknowledgedBytes() const;
    /// What is being sent, in the operator's words, as a prefix to a failure: "Block 5 of 1920: ".
    QString place() const;

    /// Packets of an image; EOT counts as one more.
    static constexpr int kPackets = 1'920;

private:
    SendOrder takeStart(char byte);
    SendOrder takeAnswer(char byte);
    SendOrder sendNext();
    SendOrder sendAgain(XmodemResult result, const QString& reason);
    SendOrder order();
    SendOrder giveUp(XmodemResult result, const QString& what, bool clearInput = true);

    const QByteArray& image_;
    const std::chrono::milliseconds startWait_;
    const std::chrono::milliseconds answerWait_;
    PacketCheck check_ = PacketCheck::crc;
    int number_ = 0;     ///< of the packet awaiting its answer, EOT being the last; 0 before the start
    QByteArray packet_;  ///< that packet, kept for repeats
    int sends_ = 0;      ///< of that packet, since its first send or a CAN
    int strayBytes_ = 0;
    int cans_ = 0;
    bool sent_ = false;
    std::optional<RuntimeFailure> failure_;
};
