#include "text/message_box.h"

#include "support/program.h"
#include "support/user.h"
#include "system/runtime_failure.h"
#include "text/error_report.h"

class Messages : public ProgramTest {
protected:
    User user;
};

TEST_F(Messages, InsertsAppearInTheirPlaces) {
    const std::tuple<int, const char*, const char*, const char*> cases[] = {
        {IDS_MSGDATA_COMM_PORT, "5", "The present communication port(COM5)is not effective.",
         "現在の通信ポート(COM5)は有効ではありません"},
        {IDS_MSGERR_COMM_TIMEOUT2, "Broken.", "Broken. / Application is shut down by [cancel]. / ",
         "Broken. / [キャンセル]でアプリケーションを終了します。 / "},
        {IDS_MSGERR_COMM_EXCEPTION, "1 %1", "Application error. / RES : 1 %1",
         "アプリケーションで異常が発生しました。 / RES : 1 %1"}};
    for (const auto& [id, insert, english, japanese] : cases) {
        gLangOffset = 10000;
        fncMsgBox(id, kCritical, insert);
        gLangOffset = 0;
        fncMsgBox(id, kCritical, insert);
        EXPECT_EQ(user.said(), QStringList({english, japanese}));
    }
}

TEST_F(Messages, OnlyTheUnexpectedErrorEndsTheProgram) {
    EXPECT_FALSE(runTrapped([] { throw RuntimeFailure(57, "COM1"); }));
    EXPECT_FALSE(runTrapped([] { throw std::bad_alloc(); }));
    const QString prefix = "アプリケーションで異常が発生しました。 / RES : ";
    ASSERT_EQ(user.said(), QStringList({prefix + "COM1", prefix + "std::bad_alloc"}));
    EXPECT_EQ(user.boxes().front().style, kCritical);
    EXPECT_NO_THROW(subReportError("The unexpected error occurred."));
    EXPECT_THROW(subReportError("予期せぬエラーが発生しました。"), ProgramEnded);
}
