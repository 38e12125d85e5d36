#include "text/message_box.h"

#include "support/program.h"
#include "support/user.h"
#include "text/error_report.h"
#include "text/runtime_failure.h"
#include "text/string_table.h"

class Messages : public ProgramTest {
protected:
    User user;
};

TEST_F(Messages, EveryMessageSaysSomethingInBothLanguages) {
    const int ids[] = {
#define DRAVOLT_STRING(id, name, english, japanese) name,
#include "resources/string_table.def"
#undef DRAVOLT_STRING
    };
    for (const int id : ids)
        for (gLangOffset = 0; gLangOffset <= 10000; gLangOffset += 10000)
            EXPECT_FALSE(text(id).trimmed().isEmpty()) << id << " + " << gLangOffset;
}

TEST_F(Messages, InsertsStandWhereTheMessageHasThem) {
    const std::tuple<int, const char*, const char*, const char*> cases[] = {
        {IDS_MSGDATA_COMM_PORT, "5", "The present communication port(COM5)is not effective.",
         "現在の通信ポート(COM5)は有効ではありません"},
        {IDS_MSGERR_COMM_TIMEOUT2, "Broken.", "Broken. / Application is shut down by [cancel]. / ",
         "Broken. / [キャンセル]でアプリケーションを終了します。 / "},
        {IDS_MSGERR_COMM_EXCEPTION, "<b>1 %1", "Application error. / RES : <b>1 %1",
         "アプリケーションで異常が発生しました。 / RES : <b>1 %1"},
        {IDS_MSGERR_COMM_TIMEOUT, "", "It is a receiving timeout error.", "受信タイムアウトエラーです。"},
    };
    for (const auto& [id, insert, english, japanese] : cases) {
        gLangOffset = 10000;
        fncMsgBox(id, kCritical, insert);
        gLangOffset = 0;
        fncMsgBox(id, kCritical, insert);
        EXPECT_EQ(user.said(), QStringList({english, japanese}));
        EXPECT_EQ(user.boxes().back().title, "Dravolt");
    }
    EXPECT_EQ(fncMsgBox(999, kCritical), kBoxFailed);
    EXPECT_EQ(user.boxes().back().title, "fncMsgBox関数のエラー");
    EXPECT_TRUE(user.boxes().back().text.startsWith("番号 : 326\n内容 : ")) << qPrintable(user.boxes().back().text);
}

TEST_F(Messages, AFailureIsShownAndOnlyTheUnexpectedErrorOfTheLanguageInUseEndsTheProgram) {
    EXPECT_FALSE(runTrapped([] { throw RuntimeFailure(57, "COM1"); }));
    EXPECT_FALSE(runTrapped([] { throw std::bad_alloc(); }));
    const QString prefix = "アプリケーションで異常が発生しました。 / RES : ";
    EXPECT_EQ(user.said(), QStringList({prefix + "COM1", prefix + "std::bad_alloc"}));
    gLangOffset = 10000;
    const QString english = text(IDS_MSGERR_UNEXPECTED);
    EXPECT_THROW(subReportError(english), ProgramEnded);
    gLangOffset = 0;
    EXPECT_NO_THROW(subReportError(english));
}
