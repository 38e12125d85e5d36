#include "text/message_box.h"

#include "support/boxes.h"
#include "support/program.h"
#include "text/string_table.h"

#include <QMessageBox>

class MessageBox : public ProgramTest {
protected:
    BoxOperator user;
};

TEST_F(MessageBox, InsertsStandWhereTheMessageHasThem) {
    struct {
        int id;
        QString insert;
        QString english;
        QString japanese;
    } const cases[] = {
        {IDS_MSGDATA_COMM_PORT, "5", "The present communication port(COM5)is not effective.",
         "現在の通信ポート(COM5)は有効ではありません"},
        {IDS_MSGERR_COMM_TIMEOUT2, "Broken.", "Broken.\nApplication is shut down by [cancel].\n",
         "Broken.\n[キャンセル]でアプリケーションを終了します。\n"},
        {IDS_MSGERR_COMM_TIMEOUT, "", "It is a receiving timeout error.", "受信タイムアウトエラーです。"},
        {IDS_MSGERR_COMM_EXCEPTION, "2204", "Application error.\nRES : 2204",
         "アプリケーションで異常が発生しました。\nRES : 2204"},
        {IDS_MSGERR_NOTADAPTED, "ignored",
         "Since the loaded file is not adapted to the connected unit, firmware upgrade cannot be performed.",
         "書き込むファイルが対象ユニットに対応していないため書込を実行できません。"},
    };
    for (const auto& c : cases) {
        gLangOffset = 10000;
        fncMsgBox(c.id, kCritical, c.insert);
        EXPECT_EQ(user.boxes().back().text, c.english);
        gLangOffset = 0;
        fncMsgBox(c.id, kCritical, c.insert);
        EXPECT_EQ(user.boxes().back().text, c.japanese);
        EXPECT_EQ(user.boxes().back().title, QStringLiteral("Dravolt"));
    }
}

TEST_F(MessageBox, StylesChooseIconAndButtonsAndTheAnswerComesBack) {
    EXPECT_EQ(showMessageBox("x", kInformation), kOk);
    EXPECT_EQ(user.boxes().back().icon, QMessageBox::Information);
    EXPECT_EQ(user.boxes().back().buttons, QStringList{"OK"});

    user.answerNext(1);
    EXPECT_EQ(showMessageBox("x", kCritical + kOkCancel), kCancel);
    EXPECT_EQ(user.boxes().back().icon, QMessageBox::Critical);
    EXPECT_EQ(user.boxes().back().buttons, QStringList({"OK", "キャンセル"}));

    gLangOffset = 10000;
    EXPECT_EQ(showMessageBox("x", kOkCancel), kOk);
    EXPECT_EQ(user.boxes().back().icon, QMessageBox::NoIcon);
    EXPECT_EQ(user.boxes().back().buttons, QStringList({"OK", "Cancel"}));
}

TEST_F(MessageBox, AnUnknownMessageShowsTheBoxOfTheRoutineItself) {
    EXPECT_EQ(fncMsgBox(999, kCritical), kBoxFailed);
    EXPECT_EQ(user.boxes().back().title, QStringLiteral("fncMsgBox関数のエラー"));
    EXPECT_TRUE(user.boxes().back().text.startsWith(QStringLiteral("番号 : 326\n内容 : ")))
        << qPrintable(user.boxes().back().text);
    EXPECT_EQ(user.boxes().back().buttons, QStringList{"OK"});
}
