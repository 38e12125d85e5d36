/// A whole run against a hostile unit: any replies, any bytes, at any time. First byte of the input: bit 0 a save, bit
/// 1 "Verification" ticked, bit 2 Cancel in the middle. The others say what the unit does until it falls silent.
#include "link/frame.h"
#include "link/protocol_words.h"
#include "support/input.h"
#include "text/message_box.h"
#include "text/string_table.h"
#include "transfer/memory_line.h"

#include <QCoreApplication>

/// First byte of its script: number of the raw send at which the port fails, divided by 8; 0: none.
class HostileUnit final : public MemoryLine {
public:
    HostileUnit(Input& script, QStringList& told) : MemoryLine(told), script_(script) {
        failsAtSend = script_.byte() * 8;
        static const QByteArrayList blocks = upload(gImageBuf + QByteArray(255, ' '));
        input = blocks;
    }

    /// Up to 0xDF: carried out; to 0xEF: refused; above: a reply of any bytes, after their number.
    QString operation(const QString& code, int unit) override {
        require(unit == kInterfaceUnit, "a run keeps its unit");
        const std::uint8_t what = script_.byte();
        if (what >= 0xF0)
            return reply(QByteArray::fromStdString(script_.bytes(script_.byte())));
        if (what >= 0xE0)
            refusals += code;
        return MemoryLine::operation(code, unit);
    }
    int fncSendRaw(const QByteArray& bytes) override {
        const bool isDue = bytes.size() > 1 ? bytes.mid(3, 128) == gImageBuf.mid(128 * acknowledged_, 128)
                                            : bytes[0] != kEot || acknowledged_ == 1'920;
        require(isDue, "only what is due goes out");
        return MemoryLine::fncSendRaw(bytes);
    }
    /// The next block; above: a count, then any bytes.
    QByteArray received() override {
        return next() < 0xE0 ? MemoryLine::received() : QByteArray::fromStdString(script_.bytes(script_.byte()));
    }

protected:
    /// What is due; to 0xEF: any byte; above: nothing in time.
    std::optional<char> answer() override {
        const std::uint8_t what = next();
        std::optional<char> byte = MemoryLine::answer();
        if (what >= 0xE0)
            byte = what < 0xF0 ? std::optional(static_cast<char>(script_.byte())) : std::nullopt;
        acknowledged_ += byte == kAck && !sent.isEmpty() ? 1 : 0;
        return byte;
    }

private:
    static QString reply(const QByteArray& bytes) {
        QByteArray data;
        ReplyParser parser(/*raw*/ bytes.size() % 2 == 1, data);
        try {
            std::ignore = std::any_of(bytes.begin(), bytes.end(), [&parser](char byte) { return parser.take(byte); });
        } catch (const RuntimeFailure&) {
            require(parser.responseCode().isEmpty(), "a failure leaves no response code");
        }
        require(data.size() <= kReplyCapacity, "the buffer keeps its bounds");
        return parser.result();
    }

    /// What the unit sends next. Up to 0xDF, n: what is due, 16 n + 1 times.
    std::uint8_t next() {
        if (due_ == 0) {
            const std::uint8_t what = script_.empty() ? 0xFF : script_.byte();
            if (what >= 0xE0)
                return what;
            due_ = 1 + what * 16;
        }
        --due_;
        return 0;
    }

    Input& script_;
    int due_ = 0;
    int acknowledged_ = 0;  ///< packets
};

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static int argc = 0;
    static const QCoreApplication application(argc, nullptr);
    static const QByteArray image = someImage();
    Input input(bytes, size);
    const std::uint8_t mode = input.byte();
    const bool saves = (mode & 1) != 0;
    const TransferJob job{.unit = kInterfaceUnit, .verificationTicked = (mode & 2) != 0, .file = "/dev/null/never"};
    gImageBuf = image + '\0';
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
    require(!unit.ticks(), "no ticks after the end");
    require(!told.contains("wrong progress"), "progress only rises, to the size of an image");
    require(told.count("release") == 1 && told.count("cursor") == 1, "a run is closed once");
    const qsizetype results = told.count("Succeed") + told.count("Failed");
    require(results == (saves && job.verificationTicked ? 0 : 1), "it says how it went, once");
    if (saves || !told.contains("Succeed"))
        return 0;
    constexpr int kBehindImage = 4;  // two blocks, two EOTs
    const bool hasComeBack = unit.input.size() <= kBehindImage && gReadBuf == gImageBuf;
    require(job.verificationTicked ? hasComeBack : unit.sent.contains("\x04"),
            "a write succeeds at its end, a verification over what has come back");
    return 0;
}
