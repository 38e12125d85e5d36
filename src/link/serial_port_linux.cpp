#include "link/serial_port.h"

#include "link/arrival_notifier.h"
#include "system/program_folder.h"
#include "system/runtime_failure.h"
#include "text/string_table.h"

#include <QFile>
#include <QFileInfo>
#include <QSocketNotifier>
#include <QStringList>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <linux/serial.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>
#include <utility>

namespace {

using Clock = std::chrono::steady_clock;

/// Where port `number` is looked for, in this order: a link of its own, or the built-in port.
QStringList placesOf(int number) {
    const QString link = QStringLiteral("com%1").arg(number);
    return {programFile(QStringLiteral("ports/") + link), programFile(link),
            QStringLiteral("/dev/ttyS%1").arg(number - 1)};
}

/// The first of these that is there. An unplugged adapter leaves a dangling link, which must not select another device.
QString devicePath(int number) {
    const QStringList places = placesOf(number);
    const auto isThere = [](const QString& path) { return QFileInfo(path).isSymLink() || QFileInfo::exists(path); };
    const auto found = std::find_if(places.begin(), places.end(), isThere);
    if (number < 1 || found == places.end())
        throw RuntimeFailure(failure::kInvalidPort, textByOffset({u"COM%1: there is no link %2 or %3, and no device %4",
                                                                  u"COM%1: リンク %2、%3 もデバイス %4 もありません"})
                                                        .arg(QString::number(number), places[0], places[1], places[2]));
    if (!QFileInfo::exists(*found))
        throw RuntimeFailure(
            failure::kInvalidPort,
            textByOffset(
                {u"COM%1: the link %2 leads to %3, which is not there; the adapter is unplugged, or the link is old",
                 u"COM%1: リンク %2 の先の %3 がありません。アダプターが抜けているか、リンクが古くなっています"})
                .arg(QString::number(number), *found, QFileInfo(*found).symLinkTarget()));
    return *found;
}

QString remedyFor(int error) {
    switch (error) {
    case EACCES:
    case EPERM:
        return textByOffset(
            {u"; add the user to the group dialout", u"。ユーザーをグループ dialout に追加してください"});
    case EBUSY:
        return remedy::inUse();
    case ENOENT:
    case ENXIO:
    case ENODEV:
    case EIO:
        return remedy::gone();
    case ENOTTY:
    case EISDIR:
        return remedy::notSerial();
    case ETIMEDOUT:
        return remedy::noData();
    case EINVAL:
        return remedy::line();
    default:
        return {};
    }
}

/// Whether the port is a pseudo-terminal, by the device numbers that Linux gives them.
bool isPseudoTerminal(int descriptor) {
    constexpr unsigned kFirst = 136;
    constexpr unsigned kLast = 143;
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && major(status.st_rdev) >= kFirst && major(status.st_rdev) <= kLast;
}

/// Takes the port for this program alone, and changes nothing else of it.
/// @return 0, or why it cannot be had
int claim(int descriptor) {
    if (::flock(descriptor, LOCK_EX | LOCK_NB) < 0)
        return errno == EWOULDBLOCK ? EBUSY : errno;
    // The kernel lets a privileged user open a port that another program has marked: ask.
    int exclusive = 0;
    if (::ioctl(descriptor, TIOCGEXCL, &exclusive) == 0 && exclusive != 0)
        return EBUSY;
    // A killed program leaves its mark on a pseudo-terminal whose other side stays open; its lock goes with it.
    if (isPseudoTerminal(descriptor))
        return 0;
    return ::ioctl(descriptor, TIOCEXCL) < 0 ? errno : 0;
}

/// Whether two settings are the same in what decides how bytes come and go.
bool isSameLine(const termios& a, const termios& b) {
    constexpr tcflag_t kCharacter = CSIZE | CSTOPB | PARENB | PARODD | CMSPAR | CRTSCTS | CLOCAL | CREAD;
    return a.c_iflag == b.c_iflag && a.c_oflag == b.c_oflag && a.c_lflag == b.c_lflag &&
           (a.c_cflag & kCharacter) == (b.c_cflag & kCharacter) && a.c_cc[VMIN] == b.c_cc[VMIN] &&
           a.c_cc[VTIME] == b.c_cc[VTIME] && ::cfgetispeed(&a) == ::cfgetispeed(&b) &&
           ::cfgetospeed(&a) == ::cfgetospeed(&b);
}

bool isGone(short events) { return (events & (POLLHUP | POLLERR | POLLNVAL)) != 0; }

class Notifier final : public ArrivalNotifier {
public:
    Notifier(int descriptor, std::function<void()> arrived) : notifier_(descriptor, QSocketNotifier::Read) {
        connect(&notifier_, &QSocketNotifier::activated, this, std::move(arrived));
    }
    void setEnabled(bool enabled) override { notifier_.setEnabled(enabled); }

private:
    QSocketNotifier notifier_;
};

class LinuxPort final : public SerialPort {
public:
    /// @param name  of the port, in messages
    LinuxPort(int descriptor, QString name) : descriptor_(descriptor), name_(std::move(name)) {}

    ~LinuxPort() override {
        // Otherwise closing would block until the output has drained.
        ::tcflush(descriptor_, TCOFLUSH);
        // The mark stays while another program has the port open. On a pseudo-terminal it is not ours.
        if (!isPseudoTerminal(descriptor_))
            ::ioctl(descriptor_, TIOCNXCL);
        ::close(descriptor_);
    }

    /// Asks the driver to hand over each byte as it comes, and to take 38400 bit/s for what it says.
    void setDriver() const {
        serial_struct serial{};
        if (::ioctl(descriptor_, TIOCGSERIAL, &serial) < 0)
            return;  // nothing to set in this driver
        constexpr auto kOtherSpeed = static_cast<int>(ASYNC_SPD_MASK);
        serial.flags = (serial.flags & ~kOtherSpeed) | static_cast<int>(ASYNC_LOW_LATENCY);
        ::ioctl(descriptor_, TIOCSSERIAL, &serial);
        // Low latency is a gain, the speed a must.
        if (::ioctl(descriptor_, TIOCGSERIAL, &serial) < 0)
            fail("line settings", errno);
        if ((serial.flags & kOtherSpeed) != 0)
            fail("line settings", EINVAL);
    }

    void setLine() const {
        termios asked{};
        if (::tcgetattr(descriptor_, &asked) < 0)
            fail("line settings", errno);
        asked.c_iflag = asked.c_oflag = asked.c_lflag = 0;
        asked.c_cflag = (asked.c_cflag & HUPCL) | CS8 | CREAD | CLOCAL;
        // With at least 1, a read of an idle port says "again", and 0 bytes mean a hang-up.
        asked.c_cc[VMIN] = 1;
        asked.c_cc[VTIME] = 0;
        ::cfsetispeed(&asked, B38400);
        ::cfsetospeed(&asked, B38400);
        if (::tcsetattr(descriptor_, TCSANOW, &asked) < 0)
            fail("line settings", errno);
        // That reports success as soon as any one setting has been made.
        termios inForce{};
        if (::tcgetattr(descriptor_, &inForce) < 0)
            fail("line settings", errno);
        if (!isSameLine(inForce, asked))
            fail("line settings", EINVAL);
        ::tcflush(descriptor_, TCIOFLUSH);
    }

    qsizetype read(char* bytes, qsizetype most) override {
        const ssize_t taken = ::read(descriptor_, bytes, static_cast<size_t>(most));
        if (taken < 0 && (errno == EAGAIN || errno == EINTR))
            return 0;
        if (taken <= 0)
            fail("read", taken < 0 ? errno : EIO);
        return taken;
    }

    qsizetype write(const char* bytes, qsizetype count, std::chrono::nanoseconds limit) override {
        const Clock::time_point deadline = Clock::now() + limit;
        for (;;) {
            const ssize_t written = ::write(descriptor_, bytes, static_cast<size_t>(count));
            if (written > 0)
                return written;
            if (written < 0 && errno != EAGAIN && errno != EINTR)
                fail("write", errno);
            if (Clock::now() >= deadline)
                fail("write", ETIMEDOUT);
            if (isGone(waitFor(POLLOUT, std::max(deadline - Clock::now(), Clock::duration::zero()))))
                fail("write", EIO);
        }
    }

    void waitForInput(std::chrono::nanoseconds limit) override { waitFor(POLLIN, limit); }
    void discardInput() override { ::tcflush(descriptor_, TCIFLUSH); }
    void discardOutput() override { ::tcflush(descriptor_, TCOFLUSH); }

    std::unique_ptr<ArrivalNotifier> notifier(std::function<void()> arrived) override {
        return std::make_unique<Notifier>(descriptor_, std::move(arrived));
    }

private:
    [[noreturn]] void fail(const char* doing, int error) const {
        throw portFailure(failure::kDeviceIo, name_, doing, error, remedyFor(error));
    }

    short waitFor(short events, std::chrono::nanoseconds limit) const {
        const auto seconds = std::chrono::floor<std::chrono::seconds>(limit);
        const timespec timeout{seconds.count(), (limit - seconds).count()};
        pollfd state{descriptor_, events, 0};
        ::ppoll(&state, 1, &timeout, nullptr);
        return state.revents;
    }

    int descriptor_;
    QString name_;
};

}  // namespace

std::unique_ptr<SerialPort> openSerialPort(int number) {
    const QString path = devicePath(number);
    const QString name = QStringLiteral("COM%1 (%2)").arg(QString::number(number), path);
    const auto fail = [&name](const char* doing, int error) {
        throw portFailure(error == EBUSY ? failure::kPortOpen : failure::kDeviceIo, name, doing, error,
                          remedyFor(error));
    };
    // Not blocking, so that neither a missing carrier nor a full buffer can hold the program.
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0)
        fail("open", errno);
    if (const int error = claim(descriptor); error != 0) {
        // Not the port's own close, which would drop the output and the mark of the program that owns it.
        ::close(descriptor);
        fail("claim", error);
    }
    auto port = std::make_unique<LinuxPort>(descriptor, name);
    port->setDriver();
    port->setLine();
    return port;
}
