#include "simulator/pty.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <system_error>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace units {

namespace {

[[noreturn]] void fail(const std::string& what) { throw std::system_error(errno, std::generic_category(), what); }

void makeRaw(int descriptor) {
    termios settings{};
    tcgetattr(descriptor, &settings);
    cfmakeraw(&settings);
    tcsetattr(descriptor, TCSANOW, &settings);
}

void makeHostile(int descriptor) {
    termios settings{};
    tcgetattr(descriptor, &settings);
    settings.c_lflag |= ICANON | ECHO | ECHOE | ISIG | IEXTEN;
    settings.c_iflag |= ICRNL | IXON | IXOFF | ISTRIP | PARMRK | INPCK;
    settings.c_oflag |= OPOST | ONLCR;
    settings.c_cflag |= CSTOPB | HUPCL;
    cfsetspeed(&settings, B9600);
    tcsetattr(descriptor, TCSANOW, &settings);
}

unsigned bitsPerSecond(speed_t speed) {
    struct Speed {
        speed_t code;
        unsigned bits;
    };
    constexpr std::array<Speed, 9> kSpeeds = {{{B1200, 1200},
                                               {B2400, 2400},
                                               {B4800, 4800},
                                               {B9600, 9600},
                                               {B19200, 19200},
                                               {B38400, 38400},
                                               {B57600, 57600},
                                               {B115200, 115200},
                                               {B230400, 230400}}};
    for (const Speed& known : kSpeeds)
        if (known.code == speed)
            return known.bits;
    return 0;
}

}  // namespace

// Delegates, so that the destructor closes what is open if a later step fails.
Pty::Pty(const Options& options) : Pty() {
    openBoth();
    if (options.lineState == LineState::raw)
        makeRaw(slave_);
    if (options.lineState == LineState::hostile)
        makeHostile(slave_);
    if (!options.link.empty())
        makeLink(options.link);
}

Pty::~Pty() { closeAll(); }

Bytes Pty::read(std::size_t limit) const {
    Bytes bytes(limit);
    const ssize_t count = ::read(master_, bytes.data(), bytes.size());
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

void Pty::forgetClient() const {
    std::array<char, 4096> events{};
    while (::read(closings_, events.data(), events.size()) > 0)
        continue;
    // A serial port drops exclusive mode at its last close, which never comes here because slave_ stays open. Another
    // client that has the port open now loses it too; that does no harm, as it never binds root and clients lock the
    // port as well.
    ioctl(slave_, TIOCNXCL);
}

std::size_t Pty::write(std::span<const std::uint8_t> bytes) const {
    if (bytes.empty())
        return 0;
    const ssize_t count = ::write(master_, bytes.data(), bytes.size());
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::optional<std::string> Pty::settingsFlaw(unsigned speed) const {
    termios settings{};
    tcgetattr(slave_, &settings);
    if (bitsPerSecond(cfgetispeed(&settings)) != speed || bitsPerSecond(cfgetospeed(&settings)) != speed)
        return "port speed is not " + std::to_string(speed);
    if ((settings.c_cflag & CSIZE) != CS8 || (settings.c_cflag & (PARENB | CSTOPB)) != 0)
        return "port not set to eight bits, no parity, one stop bit";
    if ((settings.c_lflag & (ICANON | ECHO | ISIG)) != 0 || (settings.c_oflag & OPOST) != 0)
        return "port not raw";
    if ((settings.c_iflag & (IXON | IXOFF | ICRNL | INLCR | IGNCR | ISTRIP)) != 0)
        return "port changes or drops received bytes";
    return std::nullopt;
}

void Pty::unplug() {
    if (master_ < 0)
        return;
    waitUntilRead();
    closeAll();
}

void Pty::makeLink(const std::string& path) {
    if (std::filesystem::is_symlink(path))
        std::filesystem::remove(path);
    std::filesystem::create_symlink(port_, path);
    link_ = path;
}

void Pty::removeLink() {
    // Another simulator may have replaced it by its own link.
    std::error_code error;
    if (!link_.empty() && std::filesystem::read_symlink(link_, error) == port_)
        unlink(link_.c_str());
    link_.clear();
}

void Pty::closeAll() {
    removeLink();
    for (int* end : {&closings_, &slave_, &master_}) {
        if (*end >= 0)
            close(*end);
        *end = -1;
    }
}

void Pty::openBoth() {
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK);
    if (master_ < 0 || grantpt(master_) != 0 || unlockpt(master_) != 0)
        fail("cannot open a pseudo-terminal");
    std::array<char, 128> name{};
    if (ptsname_r(master_, name.data(), name.size()) != 0)
        fail("cannot name the pseudo-terminal");
    port_ = name.data();
    slave_ = open(port_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (slave_ < 0)
        fail("cannot open " + port_);
    // Not worth failing for: without it the port may stay in exclusive mode.
    closings_ = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    inotify_add_watch(closings_, port_.c_str(), IN_CLOSE);
}

void Pty::waitUntilRead() const {
    // What has just been written takes a moment to reach the slave, where it is counted.
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    int waiting = 0;
    for (int tries = 0; tries < 400 && ioctl(slave_, FIONREAD, &waiting) == 0 && waiting > 0; ++tries)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
}

}  // namespace units
