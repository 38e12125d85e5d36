/// The simulator's receiver of an image.
///
/// First byte of the input: 1 CRC, 2 the client does not know that the download has started. Then pairs of bytes: what
/// comes, and how often: 0 the next packet, 1 the last packet again, 2 EOT, 3 CAN, 4 silence; else the second byte
/// itself.
#include "simulator/packet_receiver.h"
#include "simulator/check_values.h"
#include "simulator/control_bytes.h"
#include "simulator/image.h"
#include "support/input.h"
#include "support/require.h"

using namespace units;

namespace {

const Bytes& image() {
    static const Bytes bytes = makeImage("SV-AMP", 12504, 3);
    return bytes;
}

/// Packet `number`; those before the first and behind the last one carry any block.
Bytes makePacket(unsigned number, CheckMode mode) {
    const auto data = std::span(image()).subspan((number + kImageBlocks - 1) % kImageBlocks * kBlockSize, kBlockSize);
    Bytes packet{kSoh, static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(~number)};
    packet.insert(packet.end(), data.begin(), data.end());
    if (mode == CheckMode::crc)
        packet.push_back(static_cast<std::uint8_t>(crc16(data) >> 8));
    packet.push_back(static_cast<std::uint8_t>(mode == CheckMode::crc ? crc16(data) : sum8(data)));
    return packet;
}

std::vector<Bytes> allPackets(CheckMode mode) {
    std::vector<Bytes> packets;
    for (unsigned number = 0; number <= kImageBlocks + 1; ++number)
        packets.push_back(makePacket(number, mode));
    return packets;
}

/// A client that sends the blocks of an image, and the receiver that it sends them to.
class Session {
public:
    explicit Session(unsigned mode);

    void happen(unsigned what, std::uint8_t argument);
    void silence();
    bool over() const { return receiver_.over(); }

private:
    void accept(const Bytes& image);
    void answer(const Script& script);
    void send(const Bytes& bytes);
    void sendPacket(unsigned number);
    void sendNext();
    void repeatLast();
    void sendEot();
    void sendByte(std::uint8_t byte);

    CheckMode mode_;
    FaultBook faults_{{}};
    Journal journal_;
    Time now_{0};
    PacketReceiver receiver_;
    std::uint8_t lastAnswer_ = 0;
    unsigned acknowledged_ = 0;  ///< blocks
    bool sound_ = true;          ///< nothing has been sent that XMODEM does not know
    bool accepted_ = false;
};

Session::Session(unsigned mode)
    : mode_((mode & 1) != 0 ? CheckMode::crc : CheckMode::sum),
      receiver_(mode_, (mode & 2) != 0, faults_, journal_, {}, [this](const Bytes& i, Time) { accept(i); }) {
    answer(receiver_.begin(now_));
}

void Session::accept(const Bytes& accepted) {
    require(!accepted_, "an image is accepted once");
    require(accepted.size() == kImageSize, "an accepted image is whole");
    require(!sound_ || (acknowledged_ == kImageBlocks && accepted == image()), "and the one that was sent");
    accepted_ = true;
}

void Session::answer(const Script& script) {
    for (const std::uint8_t byte : bytesOf(script)) {
        require(byte == kAck || byte == kNak || byte == kCrcStart, "a receiver answers ACK, NAK or a start character");
        lastAnswer_ = byte;
    }
    if (!script.steps.empty())
        receiver_.sent(now_);
}

void Session::send(const Bytes& bytes) {
    lastAnswer_ = 0;
    for (const std::uint8_t byte : bytes)
        if (!over())
            answer(receiver_.take(byte, ++now_));
}

void Session::silence() {
    if (over())
        return;
    require(receiver_.deadline().has_value(), "a receiver never waits for ever");
    now_ = std::max(now_, *receiver_.deadline());
    answer(receiver_.timeout(now_));
}

void Session::sendPacket(unsigned number) {
    // Made once: most of the time would go into their check values.
    static const std::vector<Bytes> packets[] = {allPackets(CheckMode::sum), allPackets(CheckMode::crc)};
    send(packets[mode_ == CheckMode::crc ? 1 : 0][number]);
}

void Session::sendNext() {
    sendPacket(acknowledged_ + 1);
    sound_ = sound_ && acknowledged_ < kImageBlocks;
    require(!sound_ || lastAnswer_ == kAck, "a sound packet is acknowledged");
    if (lastAnswer_ == kAck)
        ++acknowledged_;
}

void Session::repeatLast() {
    sendPacket(acknowledged_);
    sound_ = sound_ && acknowledged_ > 0;
    require(!sound_ || lastAnswer_ == kAck, "a repeated packet is acknowledged");
}

void Session::sendEot() {
    send({kEot});
    require(!sound_ || accepted_ == (acknowledged_ == kImageBlocks), "the end of a whole image is accepted, no other");
}

void Session::sendByte(std::uint8_t byte) {
    sound_ = false;
    send({byte});
}

void Session::happen(unsigned what, std::uint8_t argument) {
    if (what > 4)
        return sendByte(argument);
    for (unsigned i = 0; i < argument && !over(); ++i) {
        if (what == 0)
            sendNext();
        else if (what == 1)
            repeatLast();
        else if (what == 2)
            sendEot();
        else if (what == 3)
            sendByte(kCan);
        else
            silence();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    constexpr int kMostHappenings = 64;
    constexpr int kSilencesToTheEnd = 40;
    Input input(bytes, size);
    Session session(input.byte());
    for (int i = 0; i < kMostHappenings && !input.empty(); ++i) {
        const std::uint8_t what = input.byte();
        session.happen(what, input.byte());
    }
    for (int i = 0; i < kSilencesToTheEnd; ++i)
        session.silence();
    require(session.over(), "a silent client ends the download");
    return 0;
}
