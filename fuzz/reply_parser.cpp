/// The bytes of a reply. First byte of the input: bit 0 raw data, bit 1 wraps the rest in a frame.
#include "link/frame.h"
#include "support/input.h"
#include "system/runtime_failure.h"

#include <QRegularExpression>

#include <functional>
#include <numeric>

static QByteArray framed(const QByteArray& text) {
    const QByteArray covered = text + kEtx;
    return kStx + covered + std::accumulate(covered.begin(), covered.end(), char{0}, std::bit_xor<char>());
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const QRegularExpression result(QStringLiteral("\\A([0-9A-F]{4}|90.{1,2}|)\\z"),
                                           QRegularExpression::DotMatchesEverythingOption);
    Input input(bytes, size);
    const int mode = input.byte();
    const auto sent = QByteArray::fromStdString(input.rest());

    QByteArray data;
    ReplyParser parser((mode & 1) != 0, data);
    bool isComplete = false;
    try {
        for (const char byte : (mode & 2) != 0 ? framed(sent) : sent)
            if ((isComplete = parser.take(byte)))
                break;
    } catch (const RuntimeFailure& f) {
        require(f.number() == failure::kTypeMismatch || f.number() == failure::kSubscript, "the failure is known");
        require(parser.responseCode().isEmpty(), "a failure leaves no response code");
    }
    require(isComplete || parser.responseCode().isEmpty(), "an incomplete reply has no response code");
    require(result.match(parser.result()).hasMatch(), "the result is a response code or one of the link's own");
    require(parser.logRecord().startsWith(QLatin1String("[NG2] S:")), "there is a record for every reply");
    require(data.size() <= kReplyCapacity, "the buffer keeps its bounds");
    return 0;
}
