#include "link/protocol_words.h"
#include "support/wire_rig.h"
#include "system/runtime_failure.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTimer>

#include <ctime>
#include <thread>

class FrameLink : public WireTest {
protected:
    FrameLink() { clock.start(); }

    QString send(const char* command, std::chrono::milliseconds timeout = 2s) {
        return fncSendCommand(QLatin1String(command), false, data, timeout, false);
    }

    QByteArray data;
    QElapsedTimer clock;
};

TEST_F(FrameLink, StaleBytesAreNotTakenForAReply) {
    unitsWith({"delay:300@0501", "repeat@300550"});
    EXPECT_EQ(send("0501", 200ms), "9999");
    EXPECT_EQ(data, QByteArray(451, '\0'));
    std::this_thread::sleep_for(300ms);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(send("300550010000"), "0000");
        EXPECT_EQ(data.toHex(), "30050000");
    }
    EXPECT_EQ(readFile("PelkLog.txt"), "") << "silence is not logged";
    EXPECT_FALSE(gblnCommBusy);
}

TEST_F(FrameLink, SleepsUntilTheDeadlineWhileBytesTrickleIn) {
    for (const auto& [fault, result] : {std::pair{"delay:1000@0501", "9999"}, {"split:30@0501", ""}}) {
        unitsWith({fault});
        const std::clock_t used = std::clock();
        clock.restart();
        EXPECT_EQ(send("0501", 300ms), result);
        EXPECT_GE(clock.elapsed(), 300);
        EXPECT_LT(clock.elapsed(), 400);
        EXPECT_LT(std::clock() - used, CLOCKS_PER_SEC / 10);
    }
}

TEST_F(FrameLink, LogsEachUnusableReplyOnItsOwnLine) {
    unitsWith({"bcc@300550", "cut:16@300550#2", "bcc@300550#3*2"});
    EXPECT_EQ(send("300550010000"), "");
    EXPECT_EQ(send("300550010000", 100ms), "");
    QString log = QString::fromUtf8(readFile("PelkLog.txt"));
    const QDateTime time = QDateTime::fromString(log.left(19), "yyyy/MM/dd HH:mm:ss");
    EXPECT_NEAR(double(time.toSecsSinceEpoch()), double(QDateTime::currentSecsSinceEpoch()), 60);
    EXPECT_EQ(log.replace(QRegularExpression("[0-9/]{10} [0-9:]{8} "), "TIME "),
              "TIME [NG2] S:True E:True B:True P:True U:3 A:30 05 00 00 \r\n"
              "TIME [NG2] S:True E:True B:False P:False U:450 A:30 05 00 00 \r\n");
    for (const char* make : {"mkfifo '%1'", "ln -s /dev/null '%1'"}) {
        QFile::remove(file("PelkLog.txt"));
        ASSERT_EQ(std::system(qPrintable(QString(make).replace("%1", file("PelkLog.txt")))), 0);
        EXPECT_THROW(send("300550010000"), RuntimeFailure) << make;
    }
}

TEST_F(FrameLink, AFailedExchangeDelaysTheNext) {
    unitsWith({"data:xx@0501"});
    EXPECT_THROW(send("0501"), RuntimeFailure) << "no hexadecimal pair";
    gWaits.exchangeMark = 150ms;
    bool served = false;
    QTimer::singleShot(20ms, [&served] { served = true; });
    clock.restart();
    EXPECT_EQ(send("300550010000"), "0000");
    EXPECT_GE(clock.elapsed(), 150);
    EXPECT_TRUE(served) << "events are served meanwhile";
}

TEST_F(FrameLink, ACommunicationErrorIsShownAtTheThirdAttempt) {
    unitsWith({"response:1234@0501*3"});
    for (gintCommRetry = 2; gintCommRetry <= 3; ++gintCommRetry) {
        EXPECT_EQ(user.said(), QStringList{});
        EXPECT_EQ(send("0501"), "1234");
    }
    EXPECT_EQ(user.said(), QStringList{"Communication error. / Application is shut down by [cancel]. / "});
    EXPECT_EQ(user.boxes().back().style, kCritical + kOkCancel);
    user.answerNext(kCancel);
    EXPECT_THROW(send("0501"), ProgramEnded);
}

TEST_F(FrameLink, ReadsTimeOutAfterFiveSecondsOperationsAfterTen) {
    unitsWith({"delay:1000@0501", "delay:5200@300550"});
    EXPECT_EQ(fncSendTextCommand("0501", data), "0000");
    EXPECT_EQ(fncOperationCommand(kPrepareWrite, 1), "0000");
}
