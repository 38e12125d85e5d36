#include "support/units_test.h"
#include "text/runtime_failure.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QTimer>

#include <ctime>
#include <sys/stat.h>
#include <thread>

class FrameLink : public UnitsTest {
protected:
    FrameLink() { clock.start(); }

    QString send(const char* command, std::chrono::milliseconds timeout = 2s) {
        return fncSendCommand(QLatin1String(command), false, data, timeout, false);
    }

    QByteArray data;
    QElapsedTimer clock;
};

TEST_F(FrameLink, ARefusedCommandIsNotSentAgainAndBytesAfterAReplyAreDropped) {
    unitsWith({"response:2204@300550", "repeat@300550#2"});
    EXPECT_EQ(send("300550010000"), "2204");
    EXPECT_EQ(send("300550010000"), "0000");
    EXPECT_EQ(data.toHex(), "30050000");
    EXPECT_EQ(send("300550010000"), "0000");
    EXPECT_EQ(requests(), std::vector<std::string>(3, "300550010000"));
    EXPECT_EQ(simulator->violations(), std::vector<std::string>{});
    EXPECT_FALSE(gblnCommBusy);
}

TEST_F(FrameLink, SilenceIs9999AfterTheDeadlineAndALateReplyAnswersNoOtherCommand) {
    unitsWith({"delay:300@0501"});
    const std::clock_t used = std::clock();
    clock.restart();
    EXPECT_EQ(send("0501", 200ms), "9999");
    EXPECT_GE(clock.elapsed(), 200);
    EXPECT_LT(clock.elapsed(), 260);
    EXPECT_LT(std::clock() - used, CLOCKS_PER_SEC / 10) << "it waits asleep";
    EXPECT_EQ(data, QByteArray(451, '\0'));
    EXPECT_EQ(readFile("PelkLog.txt"), "") << "silence is no unusable reply";
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(send("300550010000"), "0000");
    EXPECT_EQ(data.toHex(), "30050000");
}

TEST_F(FrameLink, AReplyThatDribblesInDoesNotStretchTheDeadline) {
    unitsWith({"split:30@0501"});
    clock.restart();
    EXPECT_EQ(send("0501", 300ms), "");
    EXPECT_GE(clock.elapsed(), 300);
    EXPECT_LT(clock.elapsed(), 400);
}

TEST_F(FrameLink, LogsEachUnusableReplyOnItsOwnLine) {
    unitsWith({"bcc@300550", "cut:16@300550#2"});
    EXPECT_EQ(send("300550010000"), "");
    EXPECT_EQ(send("300550010000", 100ms), "");
    const QStringList lines = QString::fromUtf8(readFile("PelkLog.txt")).split("\r\n");
    QStringList records;
    for (const QString& line : lines) {
        const QDateTime time = QDateTime::fromString(line.left(19), "yyyy/MM/dd HH:mm:ss");
        records += qAbs(time.secsTo(QDateTime::currentDateTime())) < 60 ? line.mid(19) : line;
    }
    EXPECT_EQ(records, QStringList({" [NG2] S:True E:True B:True P:True U:3 A:30 05 00 00 ",
                                    " [NG2] S:True E:True B:False P:False U:450 A:30 05 00 00 ", ""}));
}

TEST_F(FrameLink, ALogThatIsNoFileIsAFailureThatLeavesNoMark) {
    const QString log = file("PelkLog.txt");
    unitsWith({"bcc@300550*2"});
    ASSERT_EQ(::mkfifo(qPrintable(log), 0600), 0);
    EXPECT_THROW(send("300550010000"), RuntimeFailure);
    QFile::remove(log);
    ASSERT_TRUE(QFile::link("/dev/null", log));
    EXPECT_THROW(send("300550010000"), RuntimeFailure);
    EXPECT_FALSE(gblnCommBusy);
}

TEST_F(FrameLink, AFailedExchangeHoldsTheNextOneUpAndServesEventsMeanwhile) {
    unitsWith({"data:xx@0501"});
    EXPECT_THROW(send("0501"), RuntimeFailure) << "no hexadecimal pair";
    gWaits.exchangeMark = 150ms;
    bool served = false;
    QTimer::singleShot(20ms, [&served] { served = true; });
    clock.restart();
    EXPECT_EQ(send("300550010000"), "0000");
    EXPECT_TRUE(served);
    EXPECT_GE(clock.elapsed(), 150);
}

TEST_F(FrameLink, ACommunicationFaultIsSaidAtTheThirdAttemptAndCancelEndsTheProgram) {
    unitsWith({"response:1234@0501*3"});
    gintCommRetry = 2;
    EXPECT_EQ(send("0501"), "1234");
    EXPECT_EQ(user.said(), QStringList{});
    gintCommRetry = 3;
    EXPECT_EQ(send("0501"), "1234");
    ASSERT_EQ(user.said(), QStringList{"Communication error. / Application is shut down by [cancel]. / "});
    EXPECT_EQ(user.boxes().back().style, kCritical + kOkCancel);
    user.answerNext(kCancel);
    EXPECT_THROW(send("0501"), ProgramEnded);
}
