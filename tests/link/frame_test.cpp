#include "link/frame.h"

#include "support/print.h"
#include "system/runtime_failure.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

TEST(RequestFrame, HasTheExactBytes) {
    EXPECT_EQ(buildRequestFrame("0501"), QByteArray::fromHex("023030303030303530310337"));
    EXPECT_EQ(buildRequestFrame("0101d40001000001"), buildRequestFrame("0101D40001000001"));
}

/// A reply frame with a correct check byte around `text`, which begins with the node number.
static QByteArray replyFrame(const QByteArray& text) {
    char check = 0x03;
    for (const char c : text)
        check = static_cast<char>(check ^ c);
    return '\x02' + text + '\x03' + check;
}

static QByteArray damaged(QByteArray frame) {
    frame.back() = static_cast<char>(frame.back() ^ 1);
    return frame;
}

/// Feeds the parser up to the end of the reply.
static ReplyParser parsed(const QByteArray& bytes, bool raw, QByteArray& data) {
    ReplyParser parser(raw, data);
    std::ignore = std::any_of(bytes.begin(), bytes.end(), [&parser](char byte) { return parser.take(byte); });
    return parser;
}

TEST(Reply, IsParsed) {
    const std::tuple<QByteArray, bool, const char*, QByteArray> cases[] = {
        // text, raw, result, data
        {"00000005010000", false, "0000", "05010000"},
        {"0000000501000aFf", false, "000A", "0501000aff"},
        {"00000F05012204", false, "2204", "05012204"},
        {"00000005010000AB", true, "0000", "050100004142"},
        {"00000005010000A", false, "0000", "05010000"},
        {"000000" + QByteArray(902, '0'), false, "0000", QByteArray(902, '0')}};
    for (const auto& [text, raw, result, hexData] : cases) {
        QByteArray data;
        EXPECT_EQ(parsed(replyFrame(text), raw, data).result(), result) << text.toStdString();
        EXPECT_EQ(data.toHex(), hexData) << text.toStdString();
    }
}

TEST(Reply, IsLoggedIfUnusable) {
    const QByteArray good = replyFrame("00000005010000");
    const std::tuple<const char*, QByteArray, const char*, const char*> cases[] = {
        // name, bytes, result, record: what has been seen, the count and the bytes
        {"damaged", damaged(good), "", "True True True True 3 05 01 00 00 "},
        {"a byte comes first", "\x7f" + good, "", "True True True True 3 00 50 10 00 "},
        {"ETX among the data", QByteArray("\2") + "00000005010000AA\3B", "", "True True True True 4 05 01 00 00 AA "},
        {"no check byte", good.chopped(1), "", "True True False False 450 05 01 00 00 "},
        {"no ETX", good.chopped(2), "", "True False False False 450 05 01 00 00 "},
        {"no STX", good.mid(1), "", "False True False False 450 05 01 00 00 "},
        {"nothing stored", damaged(replyFrame("000000")), "", "True True True True -1 "},
        {"end code 12", damaged(replyFrame("00001205010000")), "9012", "True True True True 3 05 01 00 00 "},
        {"nothing", "", "9999", "False False False False 450 "}};
    for (const auto& [name, bytes, result, log] : cases) {
        QByteArray data;
        const ReplyParser parser = parsed(bytes, false, data);
        EXPECT_EQ(parser.result(), result) << name;
        EXPECT_EQ(parser.logRecord().remove(QRegularExpression("^\\[NG2\\] |\\b[SEBPUA]:")), log) << name;
    }
}

TEST(Reply, ThrowsIfMalformed) {
    QByteArray data;
    for (const QByteArray& text : {QByteArray("0000000501G0"), QByteArray("0000000501000G"), QByteArray("000000050100"),
                                   QByteArray(6 + 2 * 452, '0')})
        EXPECT_THROW(parsed(replyFrame(text), false, data), RuntimeFailure) << text.left(20).toStdString();
}
