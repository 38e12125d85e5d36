/// A whole run against a hostile unit: any replies, any bytes, at any time.
///
/// First byte of the input: bit 0 a save, bit 1 "Verification" ticked, bit 2 Cancel in the middle. The others say what
/// the unit does next: see HostileUnit. When the input is used up, the unit is silent.
#include "link/protocol_words.h"
#include "support/input.h"
#include "support/packets.h"
#include "support/require.h"
#include "text/message_box.h"
#include "text/string_table.h"
#include "transfer/memory_line.h"

#include <QCoreApplication>

namespace {

class HostileUnit final : public MemoryLine {
public:
    HostileUnit(Input& answers, QStringList& told) : MemoryLine(told), input_(answers) {}

    QString operation(const QString& code, int unit) override {
        require(unit == kInterfaceUnit, "a run keeps its unit");
        MemoryLine::operation(code, unit);
        const std::uint8_t response = input_.byte();
        return response < 0xE0 ? QString(kNormalEnd) : response < 0xF0 ? QStringLiteral("2203") : QString(kNoReply);
    }
    int fncSendRaw(const QByteArray& bytes) override {
        if (bytes.size() > 1 || bytes == "\x04") {
            require(isPacket(bytes, held + 1, gImageBuf), "only the packet that is due goes out");
            isOffered_ = true;
        }
        return input_.byte() == 0xFF ? failure::kDeviceIo : kResultSuccess;
    }
    /// 0 to 0xDF: the next blocks of what the unit holds, 16 times so many; 0xE0 EOT; 0xE1 any bytes; above: nothing.
    QByteArray received() override {
        if (blocksDue_ == 0) {
            const std::uint8_t what = input_.byte();
            if (what == 0xE0)
                return QByteArray(1, '\x04');
            if (what == 0xE1)
                return QByteArray::fromStdString(input_.bytes(input_.byte()));
            blocksDue_ = what > 0xE1 ? 0 : what * 16;
        }
        if (blocksDue_ == 0 || blocksSent == 1'920)
            return {};
        --blocksDue_;
        return QByteArray::fromHex("010000") + gImageBuf.mid(128 * blocksSent++, 128) + '\0';
    }
    /// 0 to 0xDF: the answer that is due, 16 times so many; 0xE0 to 0xEF: any byte; above: nothing in time.
    std::optional<char> fncWaitByte(std::chrono::milliseconds limit) override {
        if (answersDue_ == 0) {
            const std::uint8_t what = input_.byte();
            if (what >= 0xF0 || input_.empty()) {
                time += limit;
                return std::nullopt;
            }
            if (what >= 0xE0)
                return answered(static_cast<char>(input_.byte()));
            answersDue_ = 1 + what * 16;
        }
        --answersDue_;
        return answered(isOffered_ || held > 0 ? kAck : kCrcStart);
    }

    int held = 0;        ///< packets that the unit has acknowledged, EOT among them
    int blocksSent = 0;  ///< of what it holds

private:
    char answered(char byte) {
        if (byte == kAck && std::exchange(isOffered_, false))
            ++held;
        return byte;
    }

    Input& input_;
    bool isOffered_ = false;  ///< a packet awaits its answer
    int answersDue_ = 0;
    int blocksDue_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static int argc = 0;
    static const QCoreApplication application(argc, nullptr);
    Input input(bytes, size);
    const std::uint8_t mode = input.byte();
    const bool saves = (mode & 1) != 0;
    const TransferJob job{.unit = kInterfaceUnit, .verificationTicked = (mode & 2) != 0, .file = "/dev/null/never"};
    gImageBuf.fill('\0', kImageSize + 1);
    gImageBuf.replace(1'000, 4, "data");
    QStringList told;
    gLanguage = 1;
    setMessageBoxes([&told](const MessageBox& box) {
        told += box.text;
        return kOk;
    });
    HostileUnit unit(input, told);
    FakeScreen screen(told);
    TransferRun run(screen, unit);
    saves ? run.read(job) : run.write(job);
    for (int ticks = 0; TransferRun::isRunning(); ++ticks) {
        require(ticks < 20'000, "a run ends");
        if ((mode & 4) != 0 && ticks == 5)
            run.cancel();
        unit.tick();
    }
    setMessageBoxes({});
    const qsizetype succeeded = told.count("Succeed");
    require(!unit.ticks(), "no ticks after the end");
    require(screen.onlyRises, "progress only rises, to the size of an image");
    require(told.count("release") == 1 && told.count("cursor") == 1, "a run is closed once");
    require(succeeded + told.count("Failed") == (saves && job.verificationTicked ? 0 : 1), "it says how it went, once");
    require(saves || succeeded == 0 || unit.held == 1'921, "a write that succeeds is acknowledged to its end");
    require(saves || succeeded == 0 || !job.verificationTicked || (unit.blocksSent == 1'920 && gReadBuf == gImageBuf),
            "a verification succeeds over what has come back");
    return 0;
}
