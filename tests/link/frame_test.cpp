#include "link/frame.h"

#include "support/print.h"
#include "text/runtime_failure.h"

#include <gtest/gtest.h>

#include <ostream>

TEST(RequestFrame, IsTheExactBytes) {
    EXPECT_EQ(buildRequestFrame("0501"), QByteArray::fromHex("023030303030303530310337"));
    EXPECT_EQ(buildRequestFrame("0601"), QByteArray::fromHex("023030303030303630310334"));
    EXPECT_EQ(buildRequestFrame("0101d40001000001"), buildRequestFrame("0101D40001000001"));
}

namespace {

/// A reply frame around `text`, which begins with the node number; its check byte is right.
QByteArray replyFrame(const QByteArray& text) {
    char check = 0x03;
    for (const char c : text)
        check = static_cast<char>(check ^ c);
    return '\x02' + text + '\x03' + check;
}

const QByteArray kGood = replyFrame("00000005010000");

struct ReplyCase {
    const char* name;
    QByteArray bytes;
    bool raw;
    const char* result;
    const char* data;  ///< hexadecimal; null: the whole buffer, still uncut
    const char* log;   ///< null: nothing to log
};

QByteArray damaged(QByteArray frame) {
    frame.back() = static_cast<char>(frame.back() ^ 1);
    return frame;
}

const ReplyCase kReplies[] = {
    {"good", kGood, false, "0000", "05010000", nullptr},
    {"a byte before the start character shifts the text", "\x7f" + kGood, false, "", "00501000",
     "[NG2] S:True E:True B:True P:True U:3 A:00 50 10 00 "},
    {"lower-case digits", replyFrame("0000000501000aFf"), false, "000A", "0501000AFF", nullptr},
    {"refused", replyFrame("00000F05012204"), false, "2204", "05012204", nullptr},
    {"refused, wrong check byte", damaged(replyFrame("00000F05012204")), false, "", "05012204", nullptr},
    {"end code 11", replyFrame("00001105010000"), false, "9011", nullptr, nullptr},
    {"end code 12, wrong check byte", damaged(replyFrame("00001205010000")), false, "9012", "05010000", nullptr},
    {"end code 12 alone", replyFrame("000012"), false, "9012", "", nullptr},
    {"hexadecimal data", replyFrame("00000005010000AB"), false, "0000", "05010000AB", nullptr},
    {"raw data", replyFrame("00000005010000AB"), true, "0000", "050100004142", nullptr},
    {"odd number of digits", replyFrame("00000005010000A"), false, "0000", "05010000", nullptr},
    {"ETX inside raw data ends it",
     "\x02"
     "00000005010000A\x03"
     "B",
     true, "", "0501000041", "[NG2] S:True E:True B:True P:True U:4 A:05 01 00 00 41 "},
    {"wrong check byte", damaged(kGood), false, "", "05010000", "[NG2] S:True E:True B:True P:True U:3 A:05 01 00 00 "},
    {"no check byte", kGood.chopped(1), false, "", nullptr, "[NG2] S:True E:True B:False P:False U:450 A:05 01 00 00 "},
    {"no ETX", kGood.chopped(2), false, "", nullptr, "[NG2] S:True E:False B:False P:False U:450 A:05 01 00 00 "},
    {"no STX", kGood.mid(1), false, "", nullptr, "[NG2] S:False E:True B:False P:False U:450 A:05 01 00 00 "},
    {"nothing stored, wrong check byte", damaged(replyFrame("000000")), false, "", "",
     "[NG2] S:True E:True B:True P:True U:-1 A:"},
    {"cut in the end code",
     "\x02"
     "00000",
     false, "900", nullptr, nullptr},
    {"cut before the end code",
     "\x02"
     "0000",
     false, "9999", nullptr, nullptr},
    {"nothing", "", false, "9999", nullptr, nullptr},
};

std::ostream& operator<<(std::ostream& out, const ReplyCase& c) { return out << c.name; }

}  // namespace

class Reply : public testing::TestWithParam<ReplyCase> {};
INSTANTIATE_TEST_SUITE_P(Table, Reply, testing::ValuesIn(kReplies));

TEST_P(Reply, GivesItsResultDataAndLogRecord) {
    const ReplyCase& c = GetParam();
    QByteArray data;
    ReplyParser parser(c.raw, data);
    for (const char byte : c.bytes)
        if (parser.take(byte))
            break;
    EXPECT_EQ(parser.result(), c.result);
    EXPECT_EQ(data.toHex(), c.data != nullptr ? QByteArray(c.data).toLower() : data.leftJustified(451, '\0').toHex());
    const bool unusable = parser.endCode() == "00" && parser.responseCode().isEmpty();
    EXPECT_EQ(unusable, c.log != nullptr);
    if (c.log != nullptr) {
        EXPECT_EQ(parser.logRecord(), c.log);
    }
}

TEST(ReplyFailure, NamesWhatIsWrong) {
    struct {
        const char* name;
        QByteArray text;
        int failure;
    } const cases[] = {
        {"no hexadecimal pair", "0000000501G0", failure::kTypeMismatch},
        {"fewer than four bytes", "000000050100", failure::kSubscript},
        {"longer than the buffer", "000000" + QByteArray(2 * 452, '0'), failure::kSubscript},
    };
    for (const auto& c : cases) {
        QByteArray data;
        ReplyParser parser(false, data);
        int number = 0;
        try {
            for (const char byte : replyFrame(c.text))
                parser.take(byte);
        } catch (const RuntimeFailure& f) {
            number = f.number();
        }
        EXPECT_EQ(number, c.failure) << c.name;
    }
    QByteArray data;
    ReplyParser full(false, data);
    for (const char byte : replyFrame("000000" + QByteArray(2 * 451, '0')))
        full.take(byte);
    EXPECT_EQ(full.result(), "0000") << "451 bytes are the most that a reply may carry";
}
