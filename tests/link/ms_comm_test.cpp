#include "link/ms_comm.h"

#include "link/com_port.h"
#include "support/boxes.h"
#include "support/program.h"
#include "support/pty.h"
#include "text/runtime_failure.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

using namespace std::chrono_literals;

static const QString kSettings = QStringLiteral("38400,n,8,1");

class Port : public ProgramTest {
protected:
    ~Port() override { subPortClose(); }

    int numberOfFailure(const std::function<void()>& operation) {
        try {
            operation();
            return 0;
        } catch (const RuntimeFailure& f) {
            return f.number();
        }
    }

    Pty pty;
    BoxOperator user;
};

TEST_F(Port, SetsTheLineWhateverItWasAndDropsOldBytes) {
    linkPort(3, pty.device());
    const int before = ::open(qPrintable(pty.device()), O_RDWR | O_NOCTTY);
    termios line{};
    ::tcgetattr(before, &line);
    line.c_lflag |= ICANON | ECHO | ISIG;
    line.c_iflag |= IXON | ICRNL | ISTRIP | INPCK;
    line.c_cflag |= CSTOPB | PARENB | CRTSCTS;
    ::cfsetspeed(&line, B9600);
    ::tcsetattr(before, TCSANOW, &line);
    pty.send("old bytes\n");

    ASSERT_TRUE(fncPortOpen(3, kSettings));
    EXPECT_EQ(gobjComm->inBufferCount(), 0);
    pty.received();  // the old bytes, echoed before the program had the port
    ::tcgetattr(before, &line);
    EXPECT_EQ(line.c_lflag & (ICANON | ECHO | ISIG), 0U);
    EXPECT_EQ(line.c_iflag & (IXON | IXOFF | ICRNL | ISTRIP | INPCK), 0U);
    EXPECT_EQ(line.c_oflag & OPOST, 0U);
    EXPECT_EQ(line.c_cflag & (CSTOPB | PARENB | CRTSCTS | CSIZE), unsigned{CS8});
    EXPECT_EQ(::cfgetospeed(&line), speed_t{B38400});
    ::close(before);

    QByteArray all(256, '\0');
    for (int i = 0; i < 256; ++i)
        all[i] = static_cast<char>(i);
    pty.send(all);
    gobjComm->waitForInput(1s);
    EXPECT_EQ(gobjComm->input(1000), all) << "every byte value arrives as it was sent";
    EXPECT_EQ(pty.received(), QByteArray()) << "nothing is echoed";
    gobjComm->output(all);
    EXPECT_EQ(pty.received(), all);
}

TEST_F(Port, TellsMissingPortsFromPortsThatDoNotOpen) {
    linkPort(1, pty.device());
    linkPort(4, QStringLiteral("/nowhere"));
    linkPort(5, file({}));
    writeFile("com6", "no device");
    linkPort(7, QStringLiteral("/dev/zero"));
    const QString missing = QStringLiteral("現在の通信ポート(COM%1)は有効ではありません");
    const QString notOpening =
        QStringLiteral("通信ポートが開けません。通信ポートを使用するアプリケーションを終了して再度起動して下さい。");
    for (const int number : {-32768, 0, 4, 99, 32767}) {
        EXPECT_FALSE(fncPortOpen(number, kSettings));
        EXPECT_EQ(user.texts().back(), missing.arg(number));
    }
    for (const int number : {5, 6, 7}) {
        EXPECT_FALSE(fncPortOpen(number, kSettings));
        EXPECT_EQ(user.texts().back(), notOpening);
    }
    ASSERT_TRUE(fncPortOpen(1, kSettings)) << "a failed open leaves nothing behind";
    EXPECT_FALSE(fncPortOpen(1, kSettings));
    EXPECT_EQ(user.texts().back(), notOpening) << "the port is open already";
}

TEST_F(Port, WithoutRightsIsAFailureThatSaysWhatHelps) {
    linkPort(1, pty.device());
    ASSERT_EQ(::chmod(qPrintable(file({})), 0755), 0);
    ASSERT_EQ(::chmod(qPrintable(pty.device()), 0), 0);
    const auto openAsNobody = [this] {
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 && ::setresuid(kNobody, kNobody, kNobody) != 0)
            std::_Exit(2);
        std::_Exit(fncPortOpen(1, kSettings) ? 1 : 0);
    };
    EXPECT_EXIT(openAsNobody(), testing::ExitedWithCode(0),
                "COM1 .*: open: Permission denied.*ユーザーをグループ dialout に追加してください");
}

TEST_F(Port, StaysAwayFromAPortThatAnotherProgramHolds) {
    linkPort(1, pty.device());
    const int other = ::open(qPrintable(pty.device()), O_RDWR | O_NOCTTY);
    ::flock(other, LOCK_EX);
    EXPECT_FALSE(fncPortOpen(1, kSettings));
    ::flock(other, LOCK_UN);
    ::ioctl(other, TIOCEXCL);
    EXPECT_FALSE(fncPortOpen(1, kSettings));
    ::ioctl(other, TIOCNXCL);
    ASSERT_TRUE(fncPortOpen(1, kSettings));
    EXPECT_NE(::flock(other, LOCK_EX | LOCK_NB), 0) << "and keeps the other program away in its turn";
    subPortClose();
    EXPECT_TRUE(fncPortOpen(1, kSettings)) << "closing gives up every claim";
    ::close(other);
}

TEST_F(Port, AnUnpluggedPortIsAFailureAtTheNextLookOrWriteNotATimeOut) {
    linkPort(1, pty.device());
    ASSERT_TRUE(fncPortOpen(1, kSettings));
    pty.unplug();
    const auto before = std::chrono::steady_clock::now();
    gobjComm->waitForInput(10s);
    EXPECT_LT(std::chrono::steady_clock::now() - before, 1s);
    EXPECT_EQ(numberOfFailure([] { gobjComm->inBufferCount(); }), failure::kDeviceIo);
    EXPECT_EQ(numberOfFailure([] { gobjComm->input(1); }), failure::kDeviceIo);
    EXPECT_EQ(numberOfFailure([] { gobjComm->output("x"); }), failure::kDeviceIo);
    gobjComm->discardInput();
    subPortClose();
    EXPECT_EQ(numberOfFailure([] { boundPort(); }), failure::kPortNotOpen);
}
