#include "link/frame_link.h"

#include "link/com_port.h"
#include "link/device_commands.h"
#include "link/waits.h"
#include "support/boxes.h"
#include "support/peer.h"
#include "support/program.h"
#include "text/runtime_failure.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTimer>

using namespace std::chrono_literals;

class FrameLink : public ProgramTest {
protected:
    ~FrameLink() override {
        subPortClose();
        gblnCommBusy = false;
        gintCommRetry = 0;
        gWaits = Waits{};
    }

    /// Opens COM1 with a peer that gives `replies` in their order.
    ScriptedPeer& peerWith(std::vector<QByteArray> replies) {
        peer = std::make_unique<ScriptedPeer>(std::move(replies));
        linkPort(1, peer->device());
        EXPECT_TRUE(fncPortOpen(1, QStringLiteral("38400,n,8,1")));
        return *peer;
    }

    QString send(const char* command, std::chrono::milliseconds timeout = 2s) {
        return fncSendCommand(QLatin1String(command), false, data, timeout, false);
    }

    std::unique_ptr<ScriptedPeer> peer;
    QByteArray data;
    BoxOperator user;
};

static const QByteArray kGood = replyFrame("00000005010000");

TEST_F(FrameLink, ExchangesOneFrameForOneReply) {
    ScriptedPeer& units = peerWith({kGood + "left over", replyFrame("00000F06012204")});
    EXPECT_EQ(send("0501"), "0000");
    EXPECT_EQ(data.toHex(), "05010000");
    EXPECT_EQ(send("0601"), "2204");
    const std::vector<QByteArray> frames{QByteArray::fromHex("023030303030303530310337"),
                                         QByteArray::fromHex("023030303030303630310334")};
    EXPECT_EQ(units.requests(), frames) << "a refused command is not sent again";
    EXPECT_FALSE(gblnCommBusy);
}

TEST_F(FrameLink, KeepsTheDeadlineToTheMillisecondsAndSilenceIs9999) {
    peerWith({});
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(send("0501", 200ms), "9999");
    EXPECT_GE(clock.elapsed(), 200);
    EXPECT_LT(clock.elapsed(), 260);
    EXPECT_EQ(data, QByteArray(451, '\0'));
    EXPECT_FALSE(QFile::exists(file("PelkLog.txt")));
}

TEST_F(FrameLink, LogsEachUnusableReplyOnItsOwnLine) {
    QByteArray wrong = kGood;
    wrong.back() = '?';
    peerWith({wrong, kGood.chopped(1)});
    EXPECT_EQ(send("0501"), "");
    EXPECT_EQ(send("0501", 100ms), "");
    const QString log = QString::fromUtf8(readFile("PelkLog.txt"));
    const QString time = QStringLiteral("\\d{4}/\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d");
    EXPECT_TRUE(
        QRegularExpression(QStringLiteral("^%1 \\[NG2\\] S:True E:True B:True P:True U:3 A:05 01 00 00 \r\n"
                                          "%1 \\[NG2\\] S:True E:True B:False P:False U:450 A:05 01 00 00 \r\n$")
                               .arg(time))
            .match(log)
            .hasMatch())
        << qPrintable(log);
}

TEST_F(FrameLink, AFailedExchangeHoldsTheNextOneUpAndServesEventsMeanwhile) {
    peerWith({replyFrame("000000xx010000"), kGood});
    EXPECT_THROW(send("0501"), RuntimeFailure);
    EXPECT_TRUE(gblnCommBusy);
    gWaits.exchangeMark = 150ms;
    bool served = false;
    QTimer::singleShot(20ms, [&served] { served = true; });
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(send("0501"), "0000");
    EXPECT_TRUE(served);
    EXPECT_GE(clock.elapsed(), 150);
}

TEST_F(FrameLink, AFailedLogRecordLeavesNoMark) {
    ASSERT_TRUE(QDir(file({})).mkdir("PelkLog.txt"));
    peerWith({kGood.chopped(1)});
    EXPECT_THROW(send("0501", 100ms), RuntimeFailure);
    EXPECT_FALSE(gblnCommBusy);
}

TEST_F(FrameLink, Code1234IsReportedAtTheThirdAttemptAndCancelEndsTheProgram) {
    const QByteArray code1234 = replyFrame("00000F05011234");
    peerWith({code1234, code1234, code1234});
    gintCommRetry = 2;
    EXPECT_EQ(send("0501"), "1234");
    EXPECT_TRUE(user.boxes().empty());
    gintCommRetry = 3;
    EXPECT_EQ(send("0501"), "1234");
    EXPECT_EQ(user.texts(),
              QStringList{"通信で異常が発生しました。 / [キャンセル]でアプリケーションを終了します。 / "});
    user.answerNext(1);
    EXPECT_THROW(send("0501"), ProgramEnded);
}
