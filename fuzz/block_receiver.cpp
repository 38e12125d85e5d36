/// The receiving side of a read: what a unit, or what stands in its place, sends after the read has started.
///
/// The first byte of the input means nothing. Then: 0 to 0xFC a block in pieces, 0xFD EOT, 0xFE any piece, 0xFF
/// nothing.
#include "transfer/block_receiver.h"
#include "support/input.h"
#include "support/require.h"

#include <numeric>

using namespace std::chrono_literals;

namespace {

struct Read {
    BlockReceiver receiver{3s, {}};
    QByteArray stored;
    bool isSound = true;  ///< whole blocks and EOTs alone have come

    PollResult take(const QByteArray& piece) {
        const PollResult result = receiver.take(piece, {});
        require(result != kReceiveTimeOut, "no time has passed");
        require(result != kBlock || receiver.data().size() == kBlockSize, "a block is whole");
        if (result == kBlock)
            stored += receiver.data();
        return result;
    }

    /// Takes a block in the pieces that the input wants. @return the data that it carries
    QByteArray takeBlock(std::uint8_t number, Input& input) {
        QByteArray data = QByteArray::fromStdString(input.bytes(8)) + char(number);
        data = data.repeated(kBlockSize).left(kBlockSize);
        const char sum = std::accumulate(data.begin(), data.end(), char{0}, [](char a, char b) { return char(a + b); });
        QByteArray block = QByteArray(1, kSoh) + char(number) + char(~number) + data + sum;
        while (!block.isEmpty()) {
            const qsizetype cut = input.byte() % 132;
            const QByteArray piece = cut == 0 ? block : block.left(cut);
            block.remove(0, piece.size());
            take(piece);
        }
        return data;
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    input.byte();
    Read read;
    QByteArray expected;
    while (!input.empty()) {
        const std::uint8_t code = input.byte();
        if (code == 0xFD) {
            require(read.take(QByteArray(1, kEot)) == kEotCame || !read.isSound, "an EOT between blocks is one");
        } else if (code == 0xFE) {
            read.take(QByteArray::fromStdString(input.bytes(input.byte() * 5U)));
            read.isSound = false;
        } else if (code != 0xFF) {
            expected += read.takeBlock(code, input);
        }
    }
    require(!read.isSound || read.stored == expected, "what has been received is what the blocks carried");
    return 0;
}
