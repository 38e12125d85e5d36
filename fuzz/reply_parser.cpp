/// The bytes of a reply: first byte of the input: 1 raw data, 2 a frame is put around what follows.
#include "link/frame.h"
#include "support/input.h"
#include "support/require.h"
#include "text/runtime_failure.h"

#include <QRegularExpression>

#include <numeric>

static char exclusiveOr(const QByteArray& bytes) {
    return std::accumulate(bytes.begin(), bytes.end(), char{0},
                           [](char a, char b) { return static_cast<char>(a ^ b); });
}

static QByteArray framed(const QByteArray& text) {
    const QByteArray covered = text + kEtx;
    return kStx + covered + exclusiveOr(covered);
}

/// Compares what a complete reply has given with the whole of its bytes.
static void checkComplete(QByteArray reply, const ReplyParser& parser, const QByteArray& data) {
    const char check = reply.back();
    const QByteArray covered = reply.chopped(1).replace(kStx, QByteArray());
    const QByteArray endCode = QByteArray(covered).replace(kEtx, QByteArray()).mid(4, 2);
    require(parser.endCode() == QString::fromLatin1(endCode), "the end code is characters 5 and 6");
    const bool good = (endCode == "00" || endCode == "0F") && exclusiveOr(covered) == check;
    require(good == !parser.responseCode().isEmpty(), "a response code comes from a good check byte alone");
    if (good)
        require(parser.result() == QString::fromLatin1(data.mid(2, 2).toHex().toUpper()), "and is bytes 2 and 3");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const QRegularExpression result(QStringLiteral("\\A([0-9A-F]{4}|90.{1,2}|)\\z"),
                                           QRegularExpression::DotMatchesEverythingOption);
    Input input(bytes, size);
    const int mode = input.byte();
    const auto sent = QByteArray::fromStdString(input.rest());
    const QByteArray wire = (mode & 2) != 0 ? framed(sent) : sent;

    QByteArray data;
    ReplyParser parser((mode & 1) != 0, data);
    qsizetype taken = 0;
    bool complete = false;
    try {
        while (!complete && taken < wire.size())
            complete = parser.take(wire[taken++]);
    } catch (const RuntimeFailure& f) {
        require(f.number() == failure::kTypeMismatch || f.number() == failure::kSubscript, "the failure is known");
        require(parser.responseCode().isEmpty(), "a failure leaves no response code");
        return 0;
    }
    require(result.match(parser.result()).hasMatch(), "the result is a response code or one of the link's own");
    require(parser.logRecord().startsWith(QLatin1String("[NG2] S:")), "there is a record for every reply");
    require(data.size() <= kReplyCapacity, "the buffer keeps its bounds");
    if (complete)
        checkComplete(wire.left(taken), parser, data);
    else
        require(parser.responseCode().isEmpty(), "an incomplete reply has no response code");
    return 0;
}
