/// A whole run against a hostile unit: any replies, any bytes, at any time.
///
/// First byte of the input: bit 0 a save, bit 1 "Verification" ticked, bit 2 Cancel in the middle. The others say what
/// the unit does next: see HostileUnit. When the input is used up, the unit is silent.
#include "transfer/transfer_run.h"
#include "link/waits.h"
#include "support/input.h"
#include "support/packets.h"
#include "support/require.h"
#include "text/message_box.h"
#include "text/runtime_failure.h"
#include "text/string_table.h"
#include "transfer/image_file.h"
#include "transfer/response_codes.h"

#include <QCoreApplication>

using namespace std::chrono_literals;

namespace {

class HostileUnit final : public TransferLine {
public:
    explicit HostileUnit(Input& input) : input_(input) {}

    QString operation(const QString& code, int unit) override {
        require(unit == kInterfaceUnit, "a run keeps its unit");
        last = code;
        const std::uint8_t answer = input_.byte();
        return answer < 0xE0 ? QString(kNormalEnd) : answer < 0xF0 ? QStringLiteral("2203") : QString(kNoReply);
    }
    void clear() override { failNow(); }
    void clearInput() override {}
    int fncSendRaw(const QByteArray& bytes) override {
        if (bytes.size() > 1 || bytes == "\x04") {
            require(isPacket(bytes, held + 1, gImageBuf), "only the packet that is due goes out");
            isOffered_ = true;
        }
        return input_.byte() == 0xFF ? failure::kDeviceIo : kResultSuccess;
    }
    /// 0 to 0xDF: the next blocks of what the unit holds, so many; 0xE0 EOT; 0xE1 any bytes; above: nothing, or gone.
    QByteArray received() override {
        failNow();
        if (blocksDue_ == 0) {
            const std::uint8_t what = input_.byte();
            if (what == 0xE0)
                return QByteArray(1, '\x04');
            if (what == 0xE1)
                return QByteArray::fromStdString(input_.bytes(input_.byte()));
            if (what > 0xE1)
                return {};
            blocksDue_ = what * 16;
        }
        if (blocksDue_ == 0 || blocksSent == 1'920)
            return {};
        --blocksDue_;
        return QByteArray::fromHex("010000") + gImageBuf.mid(128 * blocksSent++, 128) + '\0';
    }
    /// 0 to 0xDF: ACK, so many times; then any byte, or nothing.
    std::optional<char> fncWaitByte(std::chrono::milliseconds limit) override {
        failNow();
        if (acksDue_ == 0) {
            const std::uint8_t what = input_.byte();
            if (what >= 0xE0) {
                const std::uint8_t byte = input_.byte();
                if (what >= 0xF0 || input_.empty()) {
                    time_ += limit;
                    return std::nullopt;
                }
                return answerWith(static_cast<char>(byte));
            }
            acksDue_ = 1 + what * 16;
        }
        --acksDue_;
        return answerWith(isOffered_ || held > 0 ? '\x06' : 'C');
    }
    void close() override { isClosed = true; }
    Time now() const override { return time_; }
    void serveEvents() override {}
    void pause(std::chrono::milliseconds) override {}
    void startTicks(std::function<void()> step) override { step_ = std::move(step); }
    void watchInput() override {}
    void holdInput(bool) override {}
    void stopTicks() override { step_ = {}; }

    bool tick() {
        time_ += 100ms;
        if (const auto step = step_)
            step();
        return step_ != nullptr;
    }

    int held = 0;        ///< packets that the unit has acknowledged, EOT among them
    int blocksSent = 0;  ///< of what it holds
    bool isClosed = false;
    QString last;  ///< operation command

private:
    void failNow() const {
        if (isClosed)
            throw RuntimeFailure(failure::kPortNotOpen, QStringLiteral("closed"));
    }
    char answerWith(char byte) {
        if (byte == '\x06' && std::exchange(isOffered_, false))
            ++held;
        return byte;
    }

    Input& input_;
    std::function<void()> step_;
    bool isOffered_ = false;  ///< a packet awaits its answer
    int acksDue_ = 0;
    int blocksDue_ = 0;
    Time time_{};
};

struct Screen final : public TransferScreen {
    void showProgress() override { bytes = 0; }
    void setProgress(int value) override {
        require(value >= bytes && value <= kImageSize, "progress only rises, to the size of an image");
        bytes = value;
    }
    void announceVerification() override {}
    void releaseWindow() override { ++released; }
    void setDefaultCursor() override { ++cursors; }
    void showWrittenVersion(int unit) override { require(unit == kInterfaceUnit, "the version is that of its unit"); }
    int bytes = 0;
    int released = 0;
    int cursors = 0;
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
    int succeeded = 0;
    int failed = 0;
    gLanguage = 1;
    setMessageBoxes([&](const MessageBox& box) {
        succeeded += box.text == "Succeed" ? 1 : 0;
        failed += box.text == "Failed" ? 1 : 0;
        return kOk;
    });
    HostileUnit unit(input);
    Screen screen;
    TransferRun run(screen, unit);
    saves ? run.read(job) : run.write(job);
    for (int ticks = 0; TransferRun::isRunning(); ++ticks) {
        require(ticks < 20'000, "a run ends");
        if ((mode & 4) != 0 && ticks == 5)
            run.cancel();
        unit.tick();
    }
    require(!unit.tick(), "no ticks after the end");
    require(screen.released == 1 && screen.cursors == 1, "a run is closed once");
    require(succeeded + failed == (saves && job.verificationTicked ? 0 : 1), "a run says how it went, once");
    if (!saves && succeeded != 0)
        require(unit.held == 1'921, "a write that succeeds has been acknowledged to its end");
    if (!saves && succeeded != 0 && job.verificationTicked)
        require(unit.blocksSent == 1'920 && gReadBuf == gImageBuf, "a verification succeeds over what has come back");
    setMessageBoxes({});
    return 0;
}
