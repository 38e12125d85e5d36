/// Receives a firmware image by XMODEM: asks for it with the start character, checks every packet strictly, and hands
/// the image over when it acknowledges the end of exactly 1920 blocks.
#pragma once

#include "simulator/bytes.h"
#include "simulator/fault_book.h"
#include "simulator/journal.h"
#include "simulator/options.h"
#include "simulator/script.h"
#include "simulator/xmodem_unit.h"

#include <functional>
#include <string>

namespace units {

class PacketReceiver final : public XmodemUnit {
public:
    /// Called with the complete image right before the acknowledgement of its end is sent, and with the time since the
    /// first byte of the first packet.
    using Accept = std::function<void(const Bytes& image, Time duration)>;

    /// `unsure`: because of a fault the client may not know that the download has started.
    PacketReceiver(CheckMode mode, bool unsure, FaultBook& faults, Journal& journal, const Timing& timing,
                   Accept accept);

    Script begin(Time now) override;
    Script take(std::uint8_t byte, Time now) override;
    void sent(Time now) override;
    Script timeout(Time now) override;

private:
    /// starting: no packet yet; between: waits for the next; inside: a packet has begun; purging: waits for silence
    /// after an error; lingering: the image is complete, but its acknowledgement may have been lost.
    enum class State { starting, between, inside, purging, lingering };

    std::size_t packetSize() const { return mode_ == CheckMode::crc ? 133 : 132; }
    Script askForStart(Time now);
    Script takeBetween(std::uint8_t byte, Time now);
    Script takeInside(std::uint8_t byte, Time now);
    Script takePurging(std::uint8_t byte, Time now);
    Script packet(Time now);
    std::string packetFlaw() const;
    Script newPacket(Time now);
    Script repeatedPacket(Time now);
    Script answerPacket(const std::string& meaning, Time now);
    Script endOfTransfer(Time now);
    Script brokenOff(Time now);
    Script answerControl(std::uint8_t control, const ActiveFaults& faults);
    Script purge(Time now);
    Script refuse(const std::string& reason, Time now);
    Script retry(Time now);
    ActiveFaults faultsOfPacket();

    CheckMode mode_;
    Accept accept_;

    State state_ = State::starting;
    Bytes image_;
    Bytes packet_;
    ActiveFaults packetFaults_;
    std::optional<Time> firstPacket_;
    unsigned blocks_ = 0;
    unsigned tries_ = 0;
    bool mayRepeat_ = false;  ///< the client has reason to send the last packet again
    bool accepted_ = false;
};

}  // namespace units
