/// XMODEM sender: an image in 128-byte packets, with checksum or CRC as the receiver asks.
///
/// Pure: it takes what came, and hands out what to do. No port, no clock, no window.
#pragma once

#include "system/runtime_failure.h"
#include "transfer/xmodem_packet.h"

#include <QByteArray>

#include <chrono>
#include <optional>

/// Numbers of the failures of a send; any other number is that of a port error.
enum XmodemResult : int { kXmodemRefused = 4097, kXmodemNoAnswer = 4098, kXmodemCancelled = 4099 };

/// What the line has to do for the sender, in this order.
struct SendOrder {
    bool clearInput = false;            ///< discard what has come in so far
    QByteArray packet{};                ///< discard it too, then send this in one write; empty: nothing
    std::chrono::milliseconds wait{0};  ///< then wait so long for one byte, from now on
};

/// One send of an image.
///
///     awaits start --"C", NAK--> awaits answer to packet 1 --ACK--> ... --> packet 1920 --ACK--> EOT --ACK--> done
///           `--------------------------`--- ten refusals or silences, two CANs ----------------------`------> failed
///
/// Every byte and every time-out is answered with an order. Once the send has ended, an order at most clears the input.
class XmodemSender {
public:
    /// @param image   what is sent, its first kPackets * kBlockSize bytes; must outlive the sender
    /// @param start   for the receiver's start character
    /// @param answer  for the answer to one packet
    XmodemSender(const QByteArray& image, std::chrono::milliseconds start, std::chrono::milliseconds answer)
        : image_(image), startWait_(start), answerWait_(answer) {}

    /// The first order: wait for the receiver's start character.
    SendOrder begin() const;
    /// Takes the byte that came within the wait of the last order.
    SendOrder take(char byte);
    /// The wait of the last order has passed without a byte.
    SendOrder timeUp();

    bool hasEnded() const { return sent_ || failure_.has_value(); }
    /// Why the send failed: where, how often, what the unit answered. None while it runs and when the image was sent.
    const std::optional<RuntimeFailure>& failure() const { return failure_; }
    /// Bytes of the image that the receiver has acknowledged.
    int acknowledgedBytes() const;
    /// What is being sent, in the operator's words, to stand before a failure: "Block 5 of 1920: ".
    QString place() const;

    /// Packets of an image; EOT follows as one more.
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
    int number_ = 0;     ///< of the packet whose answer is awaited, EOT being the last; 0 before the start
    QByteArray packet_;  ///< that packet, kept because a repeat sends the same bytes
    int sends_ = 0;      ///< of that packet, since it was sent first or a CAN came
    int strayBytes_ = 0;
    int cans_ = 0;
    bool sent_ = false;
    std::optional<RuntimeFailure> failure_;
};
