/// The sender of an image: whatever a receiver answers, and whenever.
///
/// Each byte of the input comes in as it is, but for 0xFF, a wait without a byte, and 0xFE, ACK 200 times. Then the
/// receiver is silent.
#include "transfer/xmodem_sender.h"
#include "support/input.h"
#include "support/packets.h"
#include "support/require.h"

using namespace std::chrono_literals;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const QByteArray image = QByteArray("0123456789abc").repeated(19'000).left(245'760);
    Input input(bytes, size);
    XmodemSender sender(image, 60s, 10s);
    QByteArray lastSent;
    const auto answer = [&](std::optional<char> byte) {
        const int before = sender.acknowledgedBytes();
        const SendOrder order = byte ? sender.take(*byte) : sender.timeUp();
        require(sender.acknowledgedBytes() == before || byte == kAck, "an ACK alone is progress");
        if (!order.packet.isEmpty()) {
            const int number = sender.acknowledgedBytes() / 128 + 1;
            const QByteArray due = packetOf(number, image, order.packet.size() == 133);
            require(order.packet == (number > 1'920 ? QByteArray(1, kEot) : due), "the packet that is due goes out");
            require(!sender.failure(), "nothing goes out after a failure");
            lastSent = order.packet;
        }
        require(sender.hasEnded() || order.wait == (lastSent.isEmpty() ? 60s : 10s), "the wait is the one that is due");
    };
    while (!sender.hasEnded() && !input.empty()) {
        const std::uint8_t byte = input.byte();
        for (int left = byte == 0xFE ? 200 : 1; left > 0 && !sender.hasEnded(); --left)
            answer(byte == 0xFF ? std::nullopt : std::optional(byte == 0xFE ? kAck : static_cast<char>(byte)));
    }
    for (int waits = 0; !sender.hasEnded(); ++waits) {
        require(waits < 10, "a packet goes out ten times at most");
        answer(std::nullopt);
    }
    require(sender.failure() || lastSent == QByteArray(1, kEot), "an image is sent to its end");
    return 0;
}
