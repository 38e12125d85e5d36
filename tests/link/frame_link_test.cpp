#include "link/communication_log.h"
#include "support/pty.h"
#include "support/units_test.h"
#include "text/runtime_failure.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTimer>

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

TEST_F(FrameLink, ALogThatIsNoFileIsAFailure) {
    ASSERT_EQ(::mkfifo(qPrintable(file("PelkLog.txt")), 0600), 0);
    EXPECT_THROW(subWriteCommLog("record"), RuntimeFailure);
}

TEST_F(FrameLink, ARefusedCommandIsNotSentAgainAndBytesAfterAReplyAreDropped) {
    unitsWith({"response:2204@300550", "repeat@300550#2"});
    EXPECT_EQ(send("300550010000"), "2204");
    EXPECT_EQ(send("300550010000"), "0000");
    EXPECT_EQ(data.toHex(), "30050000");
    EXPECT_EQ(send("300550010000"), "0000");
    EXPECT_EQ(requests(), std::vector<std::string>(3, "300550010000"));
    EXPECT_TRUE(simulator->violations().empty()) << simulator->violations().front();
    EXPECT_FALSE(gblnCommBusy);
}

TEST_F(FrameLink, KeepsTheDeadlineToTheMillisecondsAndSilenceIs9999) {
    unitsWith({"delay:300@0501"});
    clock.restart();
    EXPECT_EQ(send("0501", 200ms), "9999");
    EXPECT_GE(clock.elapsed(), 200);
    EXPECT_LT(clock.elapsed(), 260);
    EXPECT_EQ(data, QByteArray(451, '\0'));
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(send("300550010000"), "0000");
    EXPECT_EQ(data.toHex(), "30050000") << "the late reply is none to the next command";
}

TEST_F(FrameLink, AUnitThatNeverStopsSendingDoesNotStretchTheDeadline) {
    const Pty pty;
    linkPort(1, pty.device());
    ASSERT_TRUE(fncPortOpen(1, QStringLiteral("38400,n,8,1")));
    const std::jthread unit([&pty](const std::stop_token& stop) {
        while (!stop.stop_requested())
            pty.send(QByteArray(64, '\x02'));
    });
    clock.restart();
    EXPECT_EQ(send("0501", 300ms), "9999");
    EXPECT_GE(clock.elapsed(), 300);
    EXPECT_LT(clock.elapsed(), 400);
}

TEST_F(FrameLink, LogsEachUnusableReplyOnItsOwnLine) {
    unitsWith({"bcc@300550", "cut:16@300550#2"});
    EXPECT_EQ(send("300550010000"), "");
    EXPECT_EQ(send("300550010000", 100ms), "");
    const QString log = QString::fromUtf8(readFile("PelkLog.txt"));
    const QString pattern = "^%1 \\[NG2\\] S:True E:True B:True P:True U:3 A:30 05 00 00 \r\n"
                            "%1 \\[NG2\\] S:True E:True B:False P:False U:450 A:30 05 00 00 \r\n$";
    EXPECT_TRUE(QRegularExpression(pattern.arg("\\d{4}/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d")).match(log).hasMatch())
        << qPrintable(log);
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

TEST_F(FrameLink, AFailedLogRecordLeavesNoMark) {
    ASSERT_TRUE(QFile::link("/dev/full", file("PelkLog.txt")));
    unitsWith({"bcc@300550"});
    EXPECT_THROW(send("300550010000"), RuntimeFailure);
    EXPECT_FALSE(gblnCommBusy);
}

TEST_F(FrameLink, Code1234IsReportedAtTheThirdAttemptAndCancelEndsTheProgram) {
    unitsWith({"response:1234@0501*2"});
    gintCommRetry = 2;
    EXPECT_EQ(send("0501"), "1234");
    EXPECT_TRUE(user.boxes().empty());
    gintCommRetry = 3;
    user.answerNext(kCancel);
    EXPECT_THROW(send("0501"), ProgramEnded);
}
