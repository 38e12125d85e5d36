/// The sender of an image: whatever a receiver answers, and whenever.
///
/// Each byte of the input comes in as it is, but for 0xFF, a wait without a byte, and 0xFE, ACK 200 times.
#include "transfer/xmodem_sender.h"
#include "support/input.h"
#include "support/packets.h"
#include "support/require.h"

using namespace std::chrono_literals;

namespace {

const QByteArray kImage = QByteArray("0123456789abc").repeated(19'000).left(245'760);

class Send {
public:
    void answer(std::optional<char> byte) {
        if (sender_.hasEnded())
            return;
        const bool acknowledges = acknowledged_ >= 0 && byte == kAck;
        const bool starts = acknowledged_ < 0 && (byte == 'C' || byte == kNak);
        if (acknowledges || starts) {
            ++acknowledged_;
            sends_ = 0;
        } else if (byte == kCan) {
            // A CAN begins the count anew.
            sends_ = std::min(sends_, 1);
        }
        check(byte ? sender_.take(*byte) : sender_.timeUp());
    }

private:
    void check(const SendOrder& order) {
        if (!order.packet.isEmpty()) {
            require(isPacket(order.packet, acknowledged_ + 1, kImage), "only the packet that is due goes out");
            require(++sends_ <= 10, "a packet goes out ten times at most");
        }
        const bool sent = sender_.hasEnded() && !sender_.failure();
        require(sent == (acknowledged_ == 1'921), "sent is what has been acknowledged to its end");
        require(sender_.hasEnded() || order.wait == (acknowledged_ < 0 ? 60s : 10s), "the wait is the one that is due");
        if (sender_.failure()) {
            require(sender_.failure()->number() >= kXmodemRefused && sender_.failure()->number() <= kXmodemCancelled,
                    "the failure is a known one");
            require(order.packet.isEmpty(), "nothing goes out after a failure");
        }
        require(sender_.acknowledgedBytes() == std::clamp(acknowledged_, 0, 1'920) * 128,
                "progress is what is acknowledged");
    }

    XmodemSender sender_{kImage, 60s, 10s};
    int acknowledged_ = -1;  ///< packets, EOT among them; -1 before the start
    int sends_ = 0;          ///< of the packet that is due
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    Send send;
    while (!input.empty()) {
        const std::uint8_t byte = input.byte();
        if (byte == 0xFF) {
            send.answer(std::nullopt);
        } else if (byte == 0xFE) {
            for (int i = 0; i < 200; ++i)
                send.answer(kAck);
        } else {
            send.answer(static_cast<char>(byte));
        }
    }
    return 0;
}
