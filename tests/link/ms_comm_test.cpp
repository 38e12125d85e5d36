#include "link/com_port.h"
#include "link/waits.h"
#include "support/program.h"
#include "support/user.h"
#include "system/runtime_failure.h"
#include "text/error_report.h"

#include <QDir>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <thread>
#include <unistd.h>
#include <utility>

using namespace std::chrono_literals;

/// Alters the settings like a driver that does not support them, in place of serial hardware.
static void (*gDriver)(termios&) = nullptr;

extern "C" int __real_tcsetattr(int port, int when, const termios* line);
extern "C" int __wrap_tcsetattr(int port, int when, const termios* line) {
    termios taken = *line;
    if (gDriver != nullptr)
        gDriver(taken);
    return __real_tcsetattr(port, when, &taken);
}

class Port : public ProgramTest {
protected:
    Port() {
        char name[64];
        EXPECT_EQ(::openpty(&unit, &other, name, nullptr, nullptr), 0);
        linkPort(1, device = name);
        for (const int end : {unit, other})
            ::fcntl(end, F_SETFL, O_NONBLOCK);
    }
    ~Port() override {
        subPortClose();
        gWaits = {};
        ::close(unit);
        ::close(other);
    }

    static bool opens(int number = 1) { return fncPortOpen(number, QStringLiteral("38400,n,8,1")); }

    /// The message on standard error if the port does not open; empty if it does.
    static QString failureToOpen(int number = 1) {
        testing::internal::CaptureStderr();
        opens(number);
        return QString::fromStdString(testing::internal::GetCapturedStderr()).section("dravolt: ", 1).trimmed();
    }

    /// What the unit receives, up to `most` bytes, until the line falls silent.
    QByteArray received(qsizetype most = 1'000'000, int silenceMs = 50) const {
        QByteArray all;
        char byte = 0;
        pollfd state{unit, POLLIN, 0};
        while (all.size() < most && ::poll(&state, 1, silenceMs) > 0 && ::read(unit, &byte, 1) == 1)
            all += byte;
        return all;
    }

    User user;
    QString device;
    int unit = -1;   ///< master of a pseudo-terminal
    int other = -1;  ///< slave, held open by another program
};

TEST_F(Port, SetsTheLineFromAnyState) {
    termios line{};
    ::tcgetattr(other, &line);
    line.c_cflag |= CSTOPB | CRTSCTS;
    ::cfsetspeed(&line, B9600);
    ::tcsetattr(other, TCSANOW, &line);
    std::ignore = ::write(unit, "old bytes\n", 10);

    ASSERT_TRUE(opens());
    EXPECT_EQ(gobjComm->input(1000), "");
    ::tcgetattr(other, &line);
    EXPECT_EQ(line.c_iflag | line.c_oflag | line.c_lflag, 0U) << "raw, without echo or flow control";
    EXPECT_EQ(line.c_cflag & ~tcflag_t{HUPCL}, tcflag_t{B38400 | CS8 | CLOCAL | CREAD});
}

TEST_F(Port, ReportsMissingAndUnopenablePortsDifferently) {
    writeFile("com6", "no device");
    for (const auto& [number, target] : {std::pair{4, "/nowhere"}, {5, "/"}, {7, "/dev/zero"}})
        linkPort(number, target);
    const QString missing = "現在の通信ポート(COM%1)は有効ではありません";
    const QString notOpening =
        "通信ポートが開けません。通信ポートを使用するアプリケーションを終了して再度起動して下さい。";
    const QString noPort = "。シリアルポートではありません";
    const std::tuple<int, QString, QString> cases[] = {
        // number, box, end of the cause
        {0, missing.arg(0), ""},
        {4, missing.arg(4), " の先の /nowhere がありません。アダプターが抜けているか、リンクが古くなっています"},
        {300, missing.arg(300), file("com300") + " もデバイス /dev/ttyS299 もありません"},
        {5, notOpening, noPort},
        {6, notOpening, noPort},
        {7, notOpening, noPort},
        {1, "", ""},
        {1, notOpening, ""},  // already open
    };
    for (const auto& [number, box, causeEnd] : cases) {
        const QString cause = failureToOpen(number);
        EXPECT_EQ(cause.right(causeEnd.size()), causeEnd) << number;
        EXPECT_EQ(user.said().join('|'), box) << number;
    }
}

TEST_F(Port, PrefersTheLinkInThePortsFolder) {
    const QString link = file("ports/com1");
    QDir(file({})).mkdir("ports");
    ASSERT_TRUE(QFile::link("/nowhere", link));
    EXPECT_FALSE(opens()) << "a dangling link does not fall back to another device";
    QFile::remove(link);
    ASSERT_TRUE(QFile::link(device, link));
    linkPort(1, "/nowhere");
    EXPECT_TRUE(opens());
}

TEST_F(Port, NamesTheRemedyForMissingPermission) {
    constexpr uid_t kNobody = 65534;
    const uid_t own = ::geteuid();
    ASSERT_EQ(::chmod(qPrintable(file({})), 0755), 0);
    ASSERT_EQ(::chmod(qPrintable(device), 0), 0);
    ASSERT_EQ(::seteuid(own == 0 ? kNobody : own), 0);
    const QString cause = failureToOpen();
    ASSERT_EQ(::seteuid(own), 0);
    EXPECT_EQ(cause.section(": ", 1), "open: Permission denied。ユーザーをグループ dialout に追加してください");
}

TEST_F(Port, LeavesAPortInUseUntouched) {
    const QString inUse = "他のプログラムがポートを使用しています";
    const ssize_t written = ::write(other, std::string(1'000'000, 'x').data(), 1'000'000);
    ::flock(other, LOCK_SH);
    EXPECT_EQ(failureToOpen().section("。", 1), inUse);
    EXPECT_EQ(received().size(), written) << "the other program's output is kept";
    ::flock(other, LOCK_UN);
    ::ioctl(other, TIOCEXCL);
    EXPECT_EQ(failureToOpen().section("。", 1), inUse);
    int mark = 0;
    ::ioctl(other, TIOCGEXCL, &mark);
    EXPECT_NE(mark, 0) << "the other program's exclusive mode is kept";
    ::ioctl(other, TIOCNXCL);
    ASSERT_TRUE(opens());
    EXPECT_NE(::flock(other, LOCK_EX | LOCK_NB), 0) << "an open port keeps the other program out";
    subPortClose();
    EXPECT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0) << "closing releases the port";
}

TEST_F(Port, FailsIfTheDriverDoesNotTakeTheSettings) {
    const std::pair<const char*, void (*)(termios&)> drivers[] = {
        {"another speed", [](termios& line) { ::cfsetspeed(&line, B19200); }},
        {"waits for a carrier", [](termios& line) { line.c_cflag &= ~tcflag_t{CLOCAL}; }},
        {"XON/XOFF", [](termios& line) { line.c_iflag |= IXON; }},
        {"echoes", [](termios& line) { line.c_lflag |= ECHO; }},
        {"reads nothing as a hang-up", [](termios& line) { line.c_cc[VMIN] = 0; }},
        {"holds bytes back", [](termios& line) { line.c_cc[VTIME] = 1; }}};
    for (const auto& [name, driver] : drivers) {
        gDriver = driver;
        EXPECT_EQ(failureToOpen().section("。", 1), "ポートを 38400 bps、8N1 に設定できません。アダプターを差し直すか、"
                                                    "別のアダプターを使用してください")
            << name;
    }
    gDriver = nullptr;
}

TEST_F(Port, SendsAllBytesInOrderOnASlowLine) {
    ASSERT_TRUE(opens());
    gWaits.portWrite = 1s;
    const QByteArray bytes = QByteArray("0123456789abc").repeated(30'000);
    QByteArray all;
    std::jthread reader([&] {
        while (all.size() < bytes.size()) {
            std::this_thread::sleep_for(250ms);
            all += received(50'000, 5'000);
        }
    });
    EXPECT_NO_THROW(gobjComm->output(bytes));
    reader.join();
    EXPECT_EQ(all, bytes);
}

TEST_F(Port, NamesTheRemedyForAStalledWrite) {
    ASSERT_TRUE(opens());
    runTrapped([] { gobjComm->output(QByteArray(1'000'000, 'x')); });
    EXPECT_EQ(user.said().join(u' ').section("RES : ", 1),
              "COM1 (" + file("com1") + "): write: " + qt_error_string(ETIMEDOUT) +
                  "。データを送信できません。ケーブルと電源を確認してください");
}

TEST_F(Port, ThrowsAtTheNextReadOrWriteOnceUnplugged) {
    ASSERT_TRUE(opens());
    EXPECT_EQ(gobjComm->input(1), "") << "an idle port is not a failure";
    ::close(std::exchange(unit, -1));
    gobjComm->waitForInput(10s);
    EXPECT_THROW(gobjComm->input(1), RuntimeFailure);
    EXPECT_THROW(gobjComm->output("x"), RuntimeFailure);
    subPortClose();
    EXPECT_THROW(boundPort(), RuntimeFailure);
}
