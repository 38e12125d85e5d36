#include "support/pty.h"
#include "support/units_test.h"
#include "text/runtime_failure.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTimer>

class FrameLink : public UnitsTest {
protected:
    QString send(const char* command, std::chrono::milliseconds timeout = 2s) {
        return fncSendCommand(QLatin1String(command), false, data, timeout, false);
    }

    QByteArray data;
};

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
    unitsWith({"silence@0501"});
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(send("0501", 200ms), "9999");
    EXPECT_GE(clock.elapsed(), 200);
    EXPECT_LT(clock.elapsed(), 260);
    EXPECT_EQ(data, QByteArray(451, '\0'));
    EXPECT_FALSE(QFile::exists(file("PelkLog.txt")));
}

TEST_F(FrameLink, AUnitThatNeverStopsSendingNeitherStretchesTheDeadlineNorFillsTheMemory) {
    const std::pair<char, const char*> cases[] = {
        {'\x02', "9999"},                     // never more than a start
        {'\x03', "9999"},  {'0', "failure"},  // more than a reply can carry
        {'U', "failure"},                     // no hexadecimal digits
        {'\0', "failure"},
    };
    for (const auto& [byte, result] : cases) {
        subPortClose();
        gblnCommBusy = false;
        const Pty pty;
        linkPort(1, pty.device());
        ASSERT_TRUE(fncPortOpen(1, QStringLiteral("38400,n,8,1")));
        const Babbler babbler(pty, QByteArray(64, byte));
        QElapsedTimer clock;
        clock.start();
        try {
            EXPECT_EQ(send("0501", 300ms), result) << byte;
            EXPECT_GE(clock.elapsed(), 300);
        } catch (const RuntimeFailure&) {
            EXPECT_STREQ(result, "failure") << byte;
        }
        EXPECT_LT(clock.elapsed(), 400) << byte;
    }
}

TEST_F(FrameLink, LogsEachUnusableReplyOnItsOwnLine) {
    unitsWith({"bcc@300550", "cut:16@300550#2"});
    EXPECT_EQ(send("300550010000"), "");
    EXPECT_EQ(send("300550010000", 100ms), "");
    const QString log = QString::fromUtf8(readFile("PelkLog.txt"));
    const QString time = "\\d{4}/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d";
    EXPECT_TRUE(
        QRegularExpression(QStringLiteral("^%1 \\[NG2\\] S:True E:True B:True P:True U:3 A:30 05 00 00 \r\n"
                                          "%1 \\[NG2\\] S:True E:True B:False P:False U:450 A:30 05 00 00 \r\n$")
                               .arg(time))
            .match(log)
            .hasMatch())
        << qPrintable(log);
}

TEST_F(FrameLink, AFailedExchangeHoldsTheNextOneUpAndServesEventsMeanwhile) {
    unitsWith({"data:xx@0501"});
    EXPECT_THROW(send("0501"), RuntimeFailure) << "no hexadecimal pair";
    EXPECT_TRUE(gblnCommBusy);
    gWaits.exchangeMark = 150ms;
    bool served = false;
    QTimer::singleShot(20ms, [&served] { served = true; });
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(send("300550010000"), "0000");
    EXPECT_TRUE(served);
    EXPECT_GE(clock.elapsed(), 150);
}

TEST_F(FrameLink, AFailedLogRecordLeavesNoMark) {
    for (const char* obstacle : {".", "/dev/full"}) {
        ASSERT_TRUE(QFile::link(obstacle, file("PelkLog.txt")));
        unitsWith({"bcc@300550"});
        EXPECT_THROW(send("300550010000"), RuntimeFailure) << obstacle;
        EXPECT_FALSE(gblnCommBusy) << obstacle;
        QFile::remove(file("PelkLog.txt"));
    }
}

TEST_F(FrameLink, Code1234IsReportedAtTheThirdAttemptAndCancelEndsTheProgram) {
    unitsWith({"response:1234@0501*3"});
    gintCommRetry = 2;
    EXPECT_EQ(send("0501"), "1234");
    EXPECT_TRUE(user.boxes().empty());
    gintCommRetry = 3;
    EXPECT_EQ(send("0501"), "1234");
    EXPECT_EQ(user.said(), QStringList{"Communication error. / Application is shut down by [cancel]. / "});
    user.answerNext(1);
    EXPECT_THROW(send("0501"), ProgramEnded);
}
