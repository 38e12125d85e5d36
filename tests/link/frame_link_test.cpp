#include "support/units_test.h"
#include "text/runtime_failure.h"

#include <QDir>
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
    ASSERT_TRUE(QDir(file({})).mkdir("PelkLog.txt"));
    unitsWith({"bcc@300550"});
    EXPECT_THROW(send("300550010000"), RuntimeFailure);
    EXPECT_FALSE(gblnCommBusy);
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
