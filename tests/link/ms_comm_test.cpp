#include "link/ms_comm.h"

#include "link/com_port.h"
#include "link/waits.h"
#include "support/program.h"
#include "support/pty.h"
#include "support/user.h"
#include "text/runtime_failure.h"

#include <QDir>

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <linux/serial.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/time.h>
#include <termios.h>
#include <unistd.h>

using namespace std::chrono_literals;

/// A serial driver laid over the pseudo-terminal, as there is no serial hardware here.
struct Driver {
    const char* name;
    QString failure = {};               ///< how the failure to open ends
    unsigned flags = 0;                 ///< of the port
    unsigned keeps = 0;                 ///< flags that the program cannot change
    void (*spoil)(termios&) = nullptr;  ///< changes what the program sets
    QList<unsigned long> requests = {};
};

static Driver* gDriver = nullptr;

extern "C" {

int __real_fstat(int port, struct stat* status);
int __wrap_fstat(int port, struct stat* status) {
    const int result = __real_fstat(port, status);
    if (gDriver != nullptr)
        status->st_rdev = makedev(4, 64);
    return result;
}

int __real_ioctl(int port, unsigned long request, void* argument);
int __wrap_ioctl(int port, unsigned long request, void* argument) {
    if (gDriver == nullptr)
        return __real_ioctl(port, request, argument);
    gDriver->requests << request;
    if (request != TIOCGSERIAL && request != TIOCSSERIAL)
        return __real_ioctl(port, request, argument);
    int& flags = static_cast<serial_struct*>(argument)->flags;
    const unsigned asked = unsigned(flags);
    if (request == TIOCSSERIAL)
        gDriver->flags = (gDriver->flags & gDriver->keeps) | (asked & ~gDriver->keeps);
    flags = int(gDriver->flags);
    return request == TIOCSSERIAL && gDriver->flags != asked ? -1 : 0;
}

int __real_tcsetattr(int port, int when, const termios* line);
int __wrap_tcsetattr(int port, int when, const termios* line) {
    termios taken = *line;
    if (gDriver != nullptr && gDriver->spoil != nullptr)
        gDriver->spoil(taken);
    return __real_tcsetattr(port, when, &taken);
}

}  // extern "C"

class Port : public ProgramTest {
protected:
    Port() { linkPort(1, pty.device()); }
    ~Port() override { subPortClose(); }

    static bool opens(int number = 1) { return fncPortOpen(number, QStringLiteral("38400,n,8,1")); }

    /// What is said of a failure of `action`; empty if it succeeds.
    static QString failureOf(const std::function<void()>& action) {
        try {
            action();
            return {};
        } catch (const RuntimeFailure& f) {
            return f.description();
        }
    }

    static QString failureToOpen(MSComm& port, int number = 1) {
        port.setCommPort(number);
        return failureOf([&port] { port.open("38400,n,8,1"); });
    }

    Pty pty;
    User user;
};

TEST_F(Port, SetsTheLineWhateverItWasAndDropsOldBytes) {
    const int before = ::open(qPrintable(pty.device()), O_RDWR | O_NOCTTY);
    termios line{};
    ::tcgetattr(before, &line);
    line.c_lflag |= ICANON | ECHO | ISIG;
    line.c_iflag |= IXON | ICRNL | ISTRIP | INPCK;
    line.c_cflag |= CSTOPB | PARENB | CRTSCTS;
    line.c_cflag &= ~tcflag_t{CLOCAL | CREAD};
    ::cfsetspeed(&line, B9600);
    ::tcsetattr(before, TCSANOW, &line);
    pty.send("old bytes\n");

    ASSERT_TRUE(opens());
    EXPECT_EQ(gobjComm->inBufferCount(), 0);
    pty.received();  // the old bytes, echoed before the program had the port
    ::tcgetattr(before, &line);
    EXPECT_EQ(line.c_lflag & (ICANON | ECHO | ISIG), 0U);
    EXPECT_EQ(line.c_iflag & (IXON | IXOFF | ICRNL | ISTRIP | INPCK), 0U);
    EXPECT_EQ(line.c_oflag & OPOST, 0U);
    EXPECT_EQ(line.c_cflag & (CSTOPB | PARENB | CRTSCTS | CSIZE), unsigned{CS8});
    EXPECT_EQ(line.c_cflag & (CLOCAL | CREAD), tcflag_t{CLOCAL | CREAD});
    EXPECT_EQ(::cfgetospeed(&line), speed_t{B38400});
    ::close(before);

    QByteArray all;
    for (int i = 0; i < 256; ++i)
        all += static_cast<char>(i);
    pty.send(all);
    gobjComm->waitForInput(1s);
    EXPECT_EQ(gobjComm->input(1000), all) << "every byte value arrives as it was sent";
    gobjComm->output(all);
    EXPECT_EQ(pty.received(), all) << "and nothing is echoed";
}

TEST_F(Port, TellsMissingPortsFromPortsThatDoNotOpen) {
    linkPort(4, "/nowhere");
    linkPort(5, file({}));
    writeFile("com6", "no device");
    linkPort(7, "/dev/zero");
    const QString notOpening =
        "通信ポートが開けません。通信ポートを使用するアプリケーションを終了して再度起動して下さい。";
    for (const int number : {-32768, 0, 4, 32767}) {
        EXPECT_FALSE(opens(number));
        EXPECT_EQ(user.said(), QStringList(QString("現在の通信ポート(COM%1)は有効ではありません").arg(number)));
    }
    for (const int number : {5, 6, 7}) {
        EXPECT_FALSE(opens(number));
        EXPECT_EQ(user.said(), QStringList(notOpening));
    }
    ASSERT_TRUE(opens()) << "a failed open leaves nothing behind";
    EXPECT_FALSE(opens()) << "the port is open already";
    EXPECT_EQ(user.said(), QStringList(notOpening));
}

TEST_F(Port, IsTheLinkInTheFolderOfPortsBeforeTheOneBesideTheProgram) {
    QDir(file({})).mkdir("ports");
    linkPort(1, "/nowhere");
    ASSERT_TRUE(QFile::link(pty.device(), file("ports/com1")));
    ASSERT_TRUE(opens());
    subPortClose();
    QFile::remove(file("ports/com1"));
    EXPECT_FALSE(opens()) << "the link in the folder of ports was used";
    linkPort(1, pty.device());
    ASSERT_TRUE(QFile::link("/nowhere", file("ports/com1")));
    EXPECT_FALSE(opens()) << "a link that leads nowhere does not make another device the port";
}

TEST_F(Port, WithoutRightsIsAFailureThatSaysWhatHelps) {
    ASSERT_EQ(::chmod(qPrintable(file({})), 0755), 0);
    ASSERT_EQ(::chmod(qPrintable(pty.device()), 0), 0);
    const auto openAsNobody = [] {
        constexpr uid_t kNobody = 65534;
        if (::geteuid() == 0 && ::setresuid(kNobody, kNobody, kNobody) != 0)
            std::_Exit(2);
        std::_Exit(opens() ? 1 : 0);
    };
    EXPECT_EXIT(openAsNobody(), testing::ExitedWithCode(0),
                "COM1 .*: open: Permission denied.*ユーザーをグループ dialout に追加してください");
}

TEST_F(Port, StaysAwayFromAPortThatAnotherProgramHolds) {
    const int other = ::open(qPrintable(pty.device()), O_RDWR | O_NOCTTY);
    MSComm port;
    EXPECT_EQ(::write(other, "x", 1), 1);
    ::flock(other, LOCK_EX);
    EXPECT_TRUE(failureToOpen(port).endsWith("。他のプログラムがポートを使用しています"));
    EXPECT_EQ(pty.received(), "x") << "what the other program sends is not dropped";
    ::flock(other, LOCK_UN);
    ::ioctl(other, TIOCEXCL);
    EXPECT_TRUE(failureToOpen(port).endsWith("。他のプログラムがポートを使用しています"));
    int mark = 0;
    ::ioctl(other, TIOCGEXCL, &mark);
    EXPECT_NE(mark, 0) << "the mark of the other program is not taken away";
    ::ioctl(other, TIOCNXCL);
    ASSERT_TRUE(opens());
    EXPECT_NE(::flock(other, LOCK_EX | LOCK_NB), 0) << "and keeps the other program away in its turn";
    subPortClose();
    EXPECT_TRUE(opens()) << "closing gives up every claim";
    ::close(other);
}

TEST_F(Port, FailuresSayWhatHelps) {
    // A name that holds what the messages are put together with
    const QString folder = file("%1%3%5");
    QDir().mkdir(folder);
    setProgramFolder(folder);
    ASSERT_TRUE(QFile::link("/nowhere", folder + "/com4") && QFile::link(pty.device(), folder + "/com1"));
    MSComm unplugged;
    EXPECT_EQ(failureToOpen(unplugged, 4),
              "COM4: リンク " + folder +
                  "/com4 の先の /nowhere がありません。アダプターが抜けているか、リンクが古くなっています");

    ASSERT_TRUE(opens());
    gWaits.portWrite = 50ms;
    std::signal(SIGALRM, [](int) {});
    const itimerval alarms{{0, 5'000}, {0, 5'000}};
    ::setitimer(ITIMER_REAL, &alarms, nullptr);
    const QString said = failureOf([] { gobjComm->output(QByteArray(1'000'000, 'x')); });
    const itimerval none{};
    ::setitimer(ITIMER_REAL, &none, nullptr);
    gWaits = {};
    EXPECT_TRUE(said.startsWith("COM1 (" + folder + "/com1): write: ")) << said.toStdString();
    EXPECT_TRUE(said.endsWith("。データを送信できません。ケーブルと電源を確認してください")) << said.toStdString();
}

TEST_F(Port, OpensAgainAfterTheProgramWasKilled) {
    const auto openAndDie = [] { std::_Exit(opens() ? ::raise(SIGKILL) : 1); };
    EXPECT_EXIT(openAndDie(), testing::KilledBySignal(SIGKILL), "");
    EXPECT_TRUE(opens());
}

TEST_F(Port, IsClaimedThenSetAndTheSettingsAreReadBack) {
    const QString unfit =
        "。ポートを 38400 bps、8N1 に設定できません。アダプターを差し直すか、別のアダプターを使用してください";
    Driver drivers[] = {
        {"takes everything", {}, ASYNC_SPD_VHI, 0},
        {"refuses low latency", {}, 0, ~0U},
        {"keeps another speed for 38400", unfit, ASYNC_SPD_VHI, ASYNC_SPD_MASK},
        {"sets another speed", unfit, 0, 0, [](termios& line) { ::cfsetspeed(&line, B19200); }},
        {"waits for a carrier", unfit, 0, 0, [](termios& line) { line.c_cflag &= ~tcflag_t{CLOCAL}; }},
        {"keeps XON/XOFF", unfit, 0, 0, [](termios& line) { line.c_iflag |= IXON; }},
        {"changes line ends", unfit, 0, 0, [](termios& line) { line.c_oflag |= OPOST; }},
        {"echoes", unfit, 0, 0, [](termios& line) { line.c_lflag |= ECHO; }},
        {"reads nothing as a hang-up", unfit, 0, 0, [](termios& line) { line.c_cc[VMIN] = 0; }},
        {"holds bytes back", unfit, 0, 0, [](termios& line) { line.c_cc[VTIME] = 1; }},
    };
    for (Driver& driver : drivers) {
        gDriver = &driver;
        MSComm port;
        const QString failure = failureToOpen(port);
        EXPECT_TRUE(failure.isEmpty() == driver.failure.isEmpty() && failure.endsWith(driver.failure)) << driver.name;
        EXPECT_EQ(port.isOpen(), failure.isEmpty()) << driver.name;
        port.close();
        gDriver = nullptr;
        const auto claimed = driver.requests.indexOf(TIOCEXCL);
        EXPECT_TRUE(claimed >= 0 && claimed < driver.requests.indexOf(TIOCSSERIAL)) << driver.name;
        EXPECT_EQ(driver.requests.last(), TIOCNXCL) << driver.name;
    }
    EXPECT_EQ(drivers[0].flags, ASYNC_LOW_LATENCY);
}

TEST_F(Port, AnUnpluggedPortIsAFailureAtTheNextLookOrWriteNotATimeOut) {
    ASSERT_TRUE(opens());
    EXPECT_EQ(gobjComm->input(1), "") << "an idle port is no failure";
    pty.unplug();
    const auto before = std::chrono::steady_clock::now();
    gobjComm->waitForInput(10s);
    EXPECT_LT(std::chrono::steady_clock::now() - before, 1s);
    EXPECT_THROW(gobjComm->inBufferCount(), RuntimeFailure);
    EXPECT_THROW(gobjComm->input(1), RuntimeFailure);
    EXPECT_THROW(gobjComm->output("x"), RuntimeFailure);
    EXPECT_NO_THROW(gobjComm->discardInput());
    subPortClose();
    EXPECT_THROW(boundPort(), RuntimeFailure);
}
