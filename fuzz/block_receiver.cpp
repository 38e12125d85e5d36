/// The receiving side of a read: pieces of any bytes; before each, its size in one byte.
#include "transfer/block_receiver.h"
#include "support/input.h"
#include "support/require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    constexpr auto kSilence = std::chrono::seconds(3);
    Input input(bytes, size);
    BlockReceiver receiver(kSilence, {});
    qsizetype came = 0;
    qsizetype blocks = 0;
    while (!input.empty()) {
        const auto piece = QByteArray::fromStdString(input.bytes(input.byte()));
        const PollResult result = receiver.take(piece, {});
        came += piece.size();
        blocks += result == kBlock ? 1 : 0;
        require(result != kReceiveTimeOut, "no time has passed");
        require(result != kBlock || receiver.data().size() == kBlockSize, "a block is whole");
        require(blocks * kChecksumPacketSize <= came, "a block is made of bytes of its own");
        require(result != kEotCame || piece.contains(kEot), "an EOT has come");
    }
    require(receiver.take({}, BlockReceiver::Time{} + kSilence) == kReceiveTimeOut, "a silent unit is noticed");
    return 0;
}
