/// The receiving side of a read: what a unit, or what stands in its place, sends after the read has started.
///
/// First byte of the input: 1 starts two blocks before the end of an image. Then: 0 to 0xFC a block in pieces, 0xFD
/// EOT, 0xFE any piece, 0xFF nothing.
#include "transfer/block_receiver.h"
#include "support/input.h"
#include "support/require.h"
#include "transfer/image_buffers.h"
#include "transfer/xmodem_packet.h"

#include <numeric>

static PollResult take(const QByteArray& piece) {
    const PollResult result = takeReceived(piece);
    if (result == kBlock)
        subStoreBlock();
    require(gBlockLen >= 0 && gBlockLen <= gBlockBuf.size(), "a block keeps to its buffer");
    require(gReadBuf.size() == kImageSize + 1 && gReadCount <= gReadBuf.size(), "the image keeps to its buffer");
    return result;
}

/// Takes a block in the pieces that the input wants. @return the data that it carries
static QByteArray takeBlock(std::uint8_t number, Input& input) {
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

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    gReadBuf.fill('\0');
    gReadCount = (input.byte() & 1) != 0 ? kImageSize - 2 * kBlockSize : 0;
    subStartReceive();
    QByteArray expected(gReadCount, '\0');
    bool sound = true;  // whole blocks and EOTs alone have come
    while (!input.empty()) {
        const std::uint8_t code = input.byte();
        if (code == 0xFD) {
            require(take(QByteArray(1, kEot)) == kEotCame || !sound, "an EOT between blocks is one");
        } else if (code == 0xFE) {
            const std::string piece = input.bytes(input.byte() * 5U);
            if (!piece.empty())
                take(QByteArray::fromStdString(piece));
            sound = false;
        } else if (code != 0xFF) {
            expected += takeBlock(code, input);
        }
    }
    require(!sound || gReadBuf == expected.left(kImageSize + 1).leftJustified(kImageSize + 1, '\0'),
            "what has been stored is what the blocks carried");
    return 0;
}
