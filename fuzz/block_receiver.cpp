/// The receiving side of a read: what a unit, or what stands in its place, sends after the read has started.
///
/// First byte of the input: 1 starts two blocks before the end of an image. Then: 0 to 0xFC a block in pieces, 0xFD
/// EOT, 0xFE any piece, 0xFF nothing.
#include "transfer/block_receiver.h"
#include "link/waits.h"
#include "support/input.h"
#include "support/program.h"
#include "support/require.h"
#include "support/scripted_port.h"
#include "transfer/image_buffers.h"
#include "transfer/transfer_steps.h"
#include "transfer/xmodem_packet.h"

#include <QFile>

#include <numeric>

namespace {

const QByteArray kOldFile = "old";

class Screen final : public TransferScreen {
public:
    void showProgress() override {}
    void setProgress(int bytes) override {
        require(bytes >= shown_ && bytes <= kImageSize, "the progress rises, up to the size of an image");
        shown_ = bytes;
    }
    void unloadProgress() override {}
    void startCommTimer() override {}
    void stopCommTimer() override {}
    bool isVerifyTicked() const override { return false; }
    void enableWindow() override {}
    void setDefaultCursor() override {}
    void showWrittenVersion() override {}

private:
    int shown_ = 0;
};

/// A unit that sends what the input says, and what must come of it as long as it keeps to XMODEM.
struct Unit {
    QByteArray firmware;  ///< what the blocks have carried so far
    QByteArray answers;   ///< what is due to it
    int ends = 0;         ///< EOTs sent
    bool sound = true;    ///< has sent whole blocks and EOTs alone

    void sendBlock(std::uint8_t number, Input& input);
    void sendEot();
    void sendPiece(const QByteArray& piece);
};

void Unit::sendBlock(std::uint8_t number, Input& input) {
    QByteArray data = QByteArray::fromStdString(input.bytes(8)) + char(number);
    data = data.repeated(kBlockSize).left(kBlockSize);
    const char sum = std::accumulate(data.begin(), data.end(), char{0}, [](char a, char b) { return char(a + b); });
    QByteArray block = QByteArray(1, kSoh) + char(number) + char(~number) + data + sum;
    for (qsizetype cut = input.byte() % 132; !block.isEmpty(); cut = input.byte() % 132) {
        const qsizetype size = cut == 0 ? block.size() : std::min(cut, block.size());
        gWire.arriving.push_back(block.left(size));
        block.remove(0, size);
    }
    if (ends == 0) {
        firmware += data;
        answers += kAck;
    }
}

void Unit::sendEot() {
    gWire.arriving.push_back(QByteArray(1, kEot));
    answers += ends == 0 ? kNak : kAck;
    ++ends;
}

void Unit::sendPiece(const QByteArray& piece) {
    if (piece.isEmpty())
        return;
    gWire.arriving.push_back(piece);
    sound = false;
}

Unit sendAll(Input& input) {
    Unit unit;
    while (!input.empty() && unit.ends < 2) {
        const std::uint8_t code = input.byte();
        if (code == 0xFD)
            unit.sendEot();
        else if (code == 0xFE)
            unit.sendPiece(QByteArray::fromStdString(input.bytes(input.byte() * 5U)));
        else if (code != 0xFF)
            unit.sendBlock(code, input);
    }
    return unit;
}

/// Runs the steps of the read until they want to close it.
void receive() {
    Screen screen;
    TransferSteps steps(screen);
    std::size_t most = gWire.arriving.size() + 1;
    int state = kReceivingBlocks;
    for (; state != kReadEnded; state = steps.fncReadStep(state)) {
        require(most-- > 0, "a read ends with what the unit sends");
        require(gBlockLen >= 0 && gBlockLen <= gBlockBuf.size() && gBlockBuf.size() == 1'025,
                "a block keeps to its buffer");
    }
}

/// Whether gReadBuf holds `firmware` from `first` on, cut to its room, and zeros before and after it.
bool holds(const QByteArray& firmware, qsizetype first) {
    static const QByteArray zeros(kImageSize + 1, '\0');
    const QByteArrayView buffer = gReadBuf;
    const qsizetype size = std::min(firmware.size(), buffer.size() - first);
    const qsizetype after = buffer.size() - first - size;
    return buffer.first(first) == QByteArrayView(zeros).first(first) &&
           buffer.sliced(first, size) == QByteArrayView(firmware).first(size) &&
           buffer.last(after) == QByteArrayView(zeros).first(after);
}

/// Whether the read has written the image to the file, which is whole then; else it is the old one.
bool isSaved() {
    QFile file(gSaveFileName);
    require(file.open(QIODevice::ReadOnly), "a file is there");
    if (file.size() == kOldFile.size())
        return false;
    require(file.readAll() == QByteArrayView(gReadBuf).first(kImageSize), "a file is written whole or not at all");
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    Input input(bytes, size);
    gWaits.readSilence = {};
    resetWire();
    gReadBuf.fill('\0');
    gReadCount = (input.byte() & 1) != 0 ? kImageSize - 2 * kBlockSize : 0;
    gSaveFileName = writeProgramFile(QStringLiteral("saved.bin"), kOldFile);
    subStartReceive();
    const qsizetype first = gReadCount;
    const Unit unit = sendAll(input);

    gBoxes = 0;
    receive();
    require(gBoxes == 0, "nothing that a unit sends is a failure");
    require(gReadBuf.size() == kImageSize + 1 && gReadCount <= gReadBuf.size(), "the image keeps to its buffer");
    const bool saved = isSaved();
    require(!saved || (gWire.written.contains(kNak) && gWire.written.endsWith(kAck)), "the second EOT writes the file");
    if (unit.sound) {
        require(gWire.written == unit.answers, "each block is acknowledged, the first EOT refused, the second taken");
        require(holds(unit.firmware, first), "what has been stored is what the blocks carried");
        require(saved == (unit.ends == 2), "a read that comes to its end is saved");
    }
    return 0;
}
