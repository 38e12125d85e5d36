#include "app/ini_file.h"

#include "support/program.h"
#include "support/user.h"

#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

class IniFile : public ProgramTest {
protected:
    QString read(const char* section, const QString& key) {
        return fncGetIniString(QLatin1String(section), key, file("a.ini"));
    }
};

TEST_F(IniFile, ValuesFollowTheReadingRules) {
    writeFile("a.ini", "; remark\nstray line\n[One]\r\nplain = \t value 1 \r\nremark = text ' what follows does not "
                       "count\nTab=a\tb\ntwice = first\ntwice = second\nno value\nlong = " +
                           QByteArray(1'000'000, 'x') + "\n[two]\nplain = other\n[ONE]\nlate = found\n");
    const std::pair<const char*, QString> cases[] = {
        {"PLAIN", "value 1"}, {"remark", "text"}, {"tab", "a b"},  {"twice", "first"},
        {"no value", ""},     {"late", "found"},  {"missing", ""}, {"long", QString(126, QLatin1Char('x'))},
    };
    for (const auto& [key, value] : cases)
        EXPECT_EQ(read("one", QLatin1String(key)), value) << key;
    EXPECT_EQ(fncGetIniString("one", "plain", file("missing.ini")), "");
    writeFile("a.ini", "[s]\nアンプ = センサ～\n");
    EXPECT_EQ(read("s", "アンプ"), "センサ～");
    writeFile("a.ini", "[s]\nk = \x83\x5a\x83\x93\x83\x54\x81\x60\n");
    EXPECT_EQ(read("s", "k"), "センサ～") << "CP932, as the text is no UTF-8";
    writeFile("a.ini", "[s]\nk = text\xc3");
    EXPECT_EQ(read("s", "k"), "textﾃ") << "the beginning of a UTF-8 sequence is none";
    writeFile("a.ini", "\xef\xbb\xbf[s]\nk = with a byte order mark\n");
    EXPECT_EQ(read("s", "k"), "with a byte order mark");
}

TEST_F(IniFile, AFileThatCannotBeReadIsReportedAndGivesNothing) {
    const std::function<bool(const char*)> makers[] = {
        [](const char* path) { return ::mkdir(path, 0700) == 0; },
        [](const char* path) { return ::mkfifo(path, 0600) == 0; },
        [](const char* path) { return ::symlink("/dev/zero", path) == 0; },
        [](const char* path) { return QFile(path).open(QIODevice::WriteOnly) && ::truncate(path, 100'000'000) == 0; },
    };
    User user;
    for (const auto& make : makers) {
        ASSERT_TRUE(make(qPrintable(file("a.ini"))));
        EXPECT_EQ(read("s", "k"), "");
        const QStringList said = user.said();
        EXPECT_TRUE(said.size() == 1 && said[0].contains(file("a.ini") + ": ")) << said.join('|').toStdString();
        ::remove(qPrintable(file("a.ini")));
    }
}

TEST_F(IniFile, AFileThatTheUserMayNotReadIsReportedWithTheReason) {
    writeFile("a.ini", "[s]\nk = v\n");
    ::chmod(qPrintable(file("")), 0755);
    ::chmod(qPrintable(file("a.ini")), 0);
    User user;
    const bool isRoot = ::geteuid() == 0 && ::seteuid(65'534) == 0;
    EXPECT_EQ(read("s", "k"), "");
    if (isRoot) {
        EXPECT_EQ(::seteuid(0), 0);
    }
    EXPECT_EQ(user.said(),
              QStringList("アプリケーションで異常が発生しました。 / RES : " + file("a.ini") + ": Permission denied"));
}

TEST(List, KeepsEmptyItemsTrimsAndStopsAt101) {
    QString list = " a ,, b\tc ,\td";
    EXPECT_EQ(fncSplitList(list), 4);
    EXPECT_EQ(gListItems, QStringList({"a", "", "b c", "d"}));
    EXPECT_EQ(list, " a ,, b c , d") << "the caller's text changes too";
    QString many = QString("x,").repeated(149);
    EXPECT_EQ(fncSplitList(many), 101);
}
