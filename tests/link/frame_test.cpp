#include "link/frame.h"

#include "support/print.h"
#include "text/runtime_failure.h"

#include <gtest/gtest.h>

TEST(RequestFrame, IsTheExactBytes) {
    EXPECT_EQ(buildRequestFrame("0501"), QByteArray::fromHex("023030303030303530310337"));
    EXPECT_EQ(buildRequestFrame("0101d40001000001"), buildRequestFrame("0101D40001000001"));
}

/// A reply frame around `text`, which begins with the node number; its check byte is right.
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

/// Takes the bytes up to the end of the reply.
static ReplyParser parsed(const QByteArray& bytes, bool raw, QByteArray& data) {
    ReplyParser parser(raw, data);
    for (const char byte : bytes)
        if (parser.take(byte))
            break;
    return parser;
}

TEST(Reply, GivesItsResultDataAndLogRecord) {
    const QByteArray good = replyFrame("00000005010000");
    struct {
        const char* name;
        QByteArray bytes;
        bool raw;
        const char* result;
        QByteArray data;  ///< hexadecimal; null: the whole buffer, still uncut
        const char* log;  ///< after "[NG2] S:"; null: nothing to log
    } const cases[] = {
        {"good", good, false, "0000", "05010000", nullptr},
        {"a byte before the start character shifts the text", "\x7f" + good, false, "", "00501000",
         "True E:True B:True P:True U:3 A:00 50 10 00 "},
        {"lower-case digits", replyFrame("0000000501000aFf"), false, "000A", "0501000aff", nullptr},
        {"refused", replyFrame("00000F05012204"), false, "2204", "05012204", nullptr},
        {"refused, wrong check byte", damaged(replyFrame("00000F05012204")), false, "", "05012204", nullptr},
        {"end code 11", replyFrame("00001105010000"), false, "9011", nullptr, nullptr},
        {"end code 12, wrong check byte", damaged(replyFrame("00001205010000")), false, "9012", "05010000", nullptr},
        {"end code 12 alone", replyFrame("000012"), false, "9012", "", nullptr},
        {"hexadecimal data", replyFrame("00000005010000AB"), false, "0000", "05010000ab", nullptr},
        {"raw data", replyFrame("00000005010000AB"), true, "0000", "050100004142", nullptr},
        {"odd number of digits", replyFrame("00000005010000A"), false, "0000", "05010000", nullptr},
        {"ETX inside raw data ends it",
         QByteArray("\x02"
                    "00000005010000A\x03"
                    "B"),
         true, "", "0501000041", "True E:True B:True P:True U:4 A:05 01 00 00 41 "},
        {"wrong check byte", damaged(good), false, "", "05010000", "True E:True B:True P:True U:3 A:05 01 00 00 "},
        {"no check byte", good.chopped(1), false, "", nullptr, "True E:True B:False P:False U:450 A:05 01 00 00 "},
        {"no ETX", good.chopped(2), false, "", nullptr, "True E:False B:False P:False U:450 A:05 01 00 00 "},
        {"no STX", good.mid(1), false, "", nullptr, "False E:True B:False P:False U:450 A:05 01 00 00 "},
        {"nothing stored", damaged(replyFrame("000000")), false, "", "", "True E:True B:True P:True U:-1 A:"},
        {"cut in the end code", good.left(6), false, "900", nullptr, nullptr},
        {"cut before the end code", good.left(5), false, "9999", nullptr, nullptr},
        {"nothing", "", false, "9999", nullptr, nullptr},
        {"as long as can be", replyFrame("000000" + QByteArray(902, '0')), false, "0000", QByteArray(902, '0'),
         nullptr},
    };
    for (const auto& c : cases) {
        QByteArray data;
        const ReplyParser parser = parsed(c.bytes, c.raw, data);
        EXPECT_EQ(parser.result(), c.result) << c.name;
        EXPECT_EQ(data.toHex(), c.data.isNull() ? data.leftJustified(451, '\0').toHex() : c.data) << c.name;
        const bool unusable = parser.endCode() == "00" && parser.responseCode().isEmpty();
        EXPECT_EQ(unusable ? parser.logRecord() : QString(), c.log != nullptr ? QString("[NG2] S:") + c.log : QString())
            << c.name;
    }
}

TEST(Reply, FailsWhereItCannotBeRead) {
    QByteArray data;
    for (const QByteArray& text :
         {QByteArray("0000000501G0"), QByteArray("000000050100"), QByteArray(6 + 2 * 452, '0')})
        EXPECT_THROW(parsed(replyFrame(text), false, data), RuntimeFailure) << text.left(20).toStdString();
}
