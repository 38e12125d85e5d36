#include "support/pty.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <unistd.h>

Pty::Pty() {
    int slave = -1;
    char name[64];
    if (::openpty(&master_, &slave, name, nullptr, nullptr) != 0)
        throw std::runtime_error("openpty");
    ::close(slave);
    device_ = QString::fromLocal8Bit(name);
}

Pty::~Pty() { unplug(); }

void Pty::unplug() {
    if (master_ >= 0)
        ::close(master_);
    master_ = -1;
}

void Pty::send(const QByteArray& bytes) const {
    if (::write(master_, bytes.constData(), static_cast<std::size_t>(bytes.size())) != bytes.size())
        throw std::runtime_error("pty write");
}

QByteArray Pty::received() const {
    QByteArray all;
    pollfd state{master_, POLLIN, 0};
    while (::poll(&state, 1, 50) > 0 && (state.revents & POLLIN) != 0) {
        char buffer[256];
        const ssize_t taken = ::read(master_, buffer, sizeof buffer);
        if (taken <= 0)
            break;
        all.append(buffer, taken);
    }
    return all;
}

Babbler::Babbler(const Pty& pty, QByteArray bytes)
    : thread_([&pty, bytes = std::move(bytes)](const std::stop_token& stop) {
          // A full line must not hold the end of the test.
          ::fcntl(pty.master_, F_SETFL, O_NONBLOCK);
          pollfd state{pty.master_, POLLOUT, 0};
          while (!stop.stop_requested())
              if (::poll(&state, 1, 10) > 0)
                  (void)!::write(pty.master_, bytes.constData(), static_cast<std::size_t>(bytes.size()));
      }) {}
