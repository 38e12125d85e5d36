/// The bytes of a reply: first byte of the input: 1 raw data, 2 a frame is put around what follows.
#include "app/identification.h"
#include "link/device_commands.h"
#include "link/frame.h"
#include "support/input.h"
#include "support/require.h"
#include "text/runtime_failure.h"

#include <QRegularExpression>

#include <algorithm>
#include <cctype>
#include <numeric>

static char exclusiveOr(const QByteArray& bytes) {
    return std::accumulate(bytes.begin(), bytes.end(), char{0},
                           [](char a, char b) { return static_cast<char>(a ^ b); });
}

static QByteArray framed(const QByteArray& text) {
    const QByteArray covered = text + kEtx;
    return kStx + covered + exclusiveOr(covered);
}

static QByteArray without(QByteArray bytes, char byte) { return bytes.replace(byte, QByteArray()); }

/// The bytes that `pairs` are; a single last digit is none.
static QByteArray decoded(const QByteArray& pairs) { return QByteArray::fromHex(pairs.left(pairs.size() / 2 * 2)); }

/// The characters that are read as hexadecimal pairs.
static QByteArray pairsOf(const QByteArray& characters, bool raw) {
    return raw ? characters.mid(6, 8) : characters.mid(6);
}

static bool isHexadecimal(const QByteArray& text) {
    return std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c) != 0; });
}

/// Checks that a reply of which `taken` had come had to fail with the failure `number`.
static void checkFailure(const QByteArray& taken, bool raw, int number) {
    const QByteArray characters = without(without(taken, kStx), kEtx);
    const QByteArray pairs = pairsOf(characters, raw);
    const qsizetype carried = pairs.size() / 2 + (raw ? characters.mid(14).size() : 0);
    if (number == failure::kTypeMismatch)
        require(!isHexadecimal(pairs), "only what is no hexadecimal pair is none");
    else
        require(number == failure::kSubscript && (carried > kReplyCapacity || carried < 5), "a reply is short or long");
}

/// Compares what a complete reply has given with the whole of its bytes.
static void checkComplete(const QByteArray& reply, bool raw, const ReplyParser& parser, const QByteArray& data) {
    const QByteArray covered = without(reply.chopped(1), kStx);
    const QByteArray characters = without(covered, kEtx);
    const QByteArray endCode = characters.mid(4, 2);
    require(parser.endCode() == QString::fromLatin1(endCode), "the end code is characters 5 and 6");
    if (endCode == "11") {
        require(parser.result() == QLatin1String("9011"), "end code 11 gives 9011");
        require(data.size() == kReplyCapacity, "and leaves the buffer whole");
        return;
    }
    const QByteArray expected = decoded(pairsOf(characters, raw)) + (raw ? characters.mid(14) : QByteArray());
    require(data == expected, "the buffer holds what the characters carry, and nothing else");
    const bool good = (endCode == "00" || endCode == "0F") && exclusiveOr(covered) == reply.back();
    require(good == !parser.responseCode().isEmpty(), "a response code comes from a good check byte alone");
    if (good)
        require(parser.result() == QString::fromLatin1(data.mid(2, 2).toHex().toUpper()), "and is bytes 2 and 3");
}

static void checkAttributes(const QString& attributes) {
    require(attributeModel(attributes).size() <= 16, "a model name has at most 16 characters");
    require(attributeVersion(attributes).size() <= 6, "a version has at most 6 characters");
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const QRegularExpression result(QStringLiteral("\\A([0-9A-F]{4}|90.{1,2}|)\\z"),
                                           QRegularExpression::DotMatchesEverythingOption);
    Input input(bytes, size);
    const int mode = input.byte();
    const bool raw = (mode & 1) != 0;
    const auto sent = QByteArray::fromStdString(input.rest());
    const QByteArray wire = (mode & 2) != 0 ? framed(sent) : sent;

    QByteArray data;
    ReplyParser parser(raw, data);
    qsizetype taken = 0;
    bool complete = false;
    try {
        while (!complete && taken < wire.size())
            complete = parser.take(wire[taken++]);
    } catch (const RuntimeFailure& f) {
        checkFailure(wire.left(taken), raw, f.number());
        require(parser.responseCode().isEmpty(), "a failure leaves no response code");
        return 0;
    }
    require(result.match(parser.result()).hasMatch(), "the result is a response code or one of the link's own");
    require(parser.logRecord().startsWith(QLatin1String("[NG2] S:")), "there is a record for every reply");
    if (complete) {
        checkComplete(wire.left(taken), raw, parser, data);
        checkAttributes(QString::fromLatin1(data.mid(kReplyData)));
    } else {
        require(parser.responseCode().isEmpty(), "an incomplete reply has no response code");
        require(data.size() == kReplyCapacity, "an incomplete reply leaves the buffer whole");
    }
    return 0;
}
