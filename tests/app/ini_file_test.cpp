#include "app/ini_file.h"

#include "support/boxes.h"
#include "support/program.h"

class IniFile : public ProgramTest {
protected:
    QString read(const char* section, const QString& key) {
        return fncGetIniString(QLatin1String(section), key, file("a.ini"));
    }
};

TEST_F(IniFile, ValuesFollowTheReadingRules) {
    writeFile("a.ini", "; remark\n"
                       "stray line\n"
                       "[One]\r\n"
                       "plain = \t value 1 \r\n"
                       "remark = text ' what follows does not count\n"
                       "Tab=a\tb\n"
                       "twice = first\ntwice = second\n"
                       "long = " +
                           QByteArray(130, 'x') +
                           "\n"
                           "no value\n"
                           "[two]\nplain = other\n"
                           "[ONE]\nlate = found\n");
    const std::pair<const char*, QString> cases[] = {
        {"plain", "value 1"}, {"PLAIN", "value 1"}, {"remark", "text"},
        {"tab", "a b"},       {"twice", "first"},   {"long", QString(126, QLatin1Char('x'))},
        {"no value", ""},     {"late", "found"},    {"missing", ""},
    };
    for (const auto& [key, value] : cases)
        EXPECT_EQ(read("one", QLatin1String(key)), value) << key;
    EXPECT_EQ(read("three", "plain"), "");
    EXPECT_EQ(fncGetIniString("one", "plain", file("missing.ini")), "");
}

TEST_F(IniFile, TextIsUtf8OrElseCp932) {
    writeFile("a.ini", "[s]\nアンプ = センサ～\n");
    EXPECT_EQ(read("s", "アンプ"), "センサ～");
    writeFile("a.ini", "[s]\nk = \x83\x5a\x83\x93\x83\x54\x81\x60\n");
    EXPECT_EQ(read("s", "k"), "センサ～");
    writeFile("a.ini", "\xef\xbb\xbf[s]\nk = with a byte order mark\n");
    EXPECT_EQ(read("s", "k"), "with a byte order mark");
}

TEST_F(IniFile, AFileThatCannotBeReadIsReportedAndGivesNothing) {
    BoxOperator user;
    ASSERT_TRUE(QDir(file({})).mkdir("a.ini"));
    EXPECT_EQ(read("s", "k"), "");
    ASSERT_EQ(user.boxes().size(), 1U);
    EXPECT_TRUE(user.boxes()[0].text.contains(file("a.ini")));
}

TEST(List, KeepsEmptyItemsTrimsAndStopsAt101) {
    QString list = " a ,, b\tc ,\td";
    EXPECT_EQ(fncSplitList(list), 4);
    EXPECT_EQ(gListItems, QStringList({"a", "", "b c", "d"}));
    EXPECT_EQ(list, " a ,, b c , d") << "the caller's text changes too";
    QString empty;
    EXPECT_EQ(fncSplitList(empty), 1);
    QString long150 = QString("x,").repeated(149) + "x";
    EXPECT_EQ(fncSplitList(long150), 101);
}
