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
    ::fcntl(master_, F_SETFL, O_NONBLOCK);
    ::close(slave);
    device_ = QString::fromLocal8Bit(name);
}

void Pty::unplug() {
    if (master_ >= 0)
        ::close(master_);
    master_ = -1;
}

void Pty::send(const QByteArray& bytes) const {
    (void)!::write(master_, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

QByteArray Pty::received() const {
    QByteArray all;
    pollfd state{master_, POLLIN, 0};
    char buffer[256];
    while (::poll(&state, 1, 50) > 0)
        if (const ssize_t taken = ::read(master_, buffer, sizeof buffer); taken > 0)
            all.append(buffer, taken);
        else
            break;
    return all;
}
