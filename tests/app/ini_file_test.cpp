#include "app/ini_file.h"

#include "support/program.h"
#include "support/user.h"

class IniFile : public ProgramTest {
protected:
    QString read(const char* section, const QString& key) { return fncGetIniString(QLatin1String(section), key, path); }

    const QString path = file("a.ini");
    User user;
};

TEST_F(IniFile, ValuesFollowTheReadingRules) {
    writeFile("a.ini", "; remark\nstray line\n[One]\r\nplain = \t value 1 \r\nremark = text ' what follows does not "
                       "count\nTab=a\tb\ntwice = first\ntwice = second\nno value\nlong = " +
                           QByteArray(1'000'000, 'x') + "\n[two]\nplain = other\n[ONE]\nlate = found\n");
    const std::pair<const char*, QString> cases[] = {
        {"PLAIN", "value 1"}, {"remark", "text"}, {"tab", "a b"},  {"twice", "first"},
        {"no value", ""},     {"late", "found"},  {"missing", ""}, {"long", QString(126, QLatin1Char('x'))}};
    for (const auto& [key, value] : cases)
        EXPECT_EQ(read("one", QLatin1String(key)), value) << key;
    EXPECT_EQ(fncGetIniString("one", "plain", file("missing.ini")), "");
    EXPECT_EQ(user.said(), QStringList());
}

TEST_F(IniFile, IsDecodedAsUtf8OrElseCp932) {
    for (const auto& [content, value] : {std::pair{"[s]\nアンプ = センサ～", "センサ～"},
                                         {"\xef\xbb\xbf[s]\nアンプ = センサ～", "センサ～"},
                                         {"[s]\n\xb1\xdd\xcc\xdf = \x83\x5a\x83\x93\x83\x54\x81\x60", "センサ～"},
                                         {"[s]\n\xb1\xdd\xcc\xdf = text\xc3", "textﾃ"}}) {
        writeFile("a.ini", content);
        EXPECT_EQ(read("s", "アンプ") + read("s", "ｱﾝﾌﾟ"), value);
    }
}

TEST_F(IniFile, AnUnreadableFileIsReportedWithTheReason) {
    const auto reported = [](const QString& reason) {
        return QStringList("アプリケーションで異常が発生しました。 / RES : " + reason);
    };
    for (const auto& [make, reason] : {std::pair{"mkdir '%1'", "ファイルではありません"},
                                       {"mkfifo '%1'", "ファイルではありません"},
                                       {"ln -s /dev/zero '%1'", "ファイルではありません"},
                                       {"ln -s /proc/self/mem '%1'", "Input/output error"},
                                       {"ln -s /sys/bus/cpu/uevent '%1'", "Permission denied"},
                                       {"truncate -s 5M '%1'", "ファイルが4194304バイトを超えています"}}) {
        ASSERT_EQ(std::system(qPrintable(QString(make).replace("%1", path))), 0);
        EXPECT_EQ(read("s", "k"), "") << make;
        EXPECT_EQ(user.said(), reported(path + ": " + reason)) << make;
        ::remove(qPrintable(path));
    }
}

TEST(List, IsSplitAtCommas) {
    QString list = " a ,, b\tc ,\td";
    EXPECT_EQ(fncSplitList(list), 4);
    EXPECT_EQ(gListItems, QStringList({"a", "", "b c", "d"}));
    EXPECT_EQ(list, " a ,, b c , d") << "tabs in the caller's text are replaced too";
    QString many = QString("x,").repeated(149);
    EXPECT_EQ(fncSplitList(many), 101);
}
