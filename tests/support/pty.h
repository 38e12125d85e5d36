/// A bare pseudo-terminal.
#pragma once

#include <QByteArray>
#include <QString>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <unistd.h>

/// A pseudo-terminal with nobody on it: the test writes and reads its far side.
class Pty {
public:
    Pty() {
        char name[64];
        if (::openpty(&master_, &slave_, name, nullptr, nullptr) == 0)
            device_ = name;
        ::fcntl(master_, F_SETFL, O_NONBLOCK);
        ::close(slave_);
    }
    ~Pty() { unplug(); }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    QString device() const { return device_; }

    /// Sends as many of the bytes as the line takes at once.
    void send(const QByteArray& bytes) const { (void)!::write(master_, bytes.data(), std::size_t(bytes.size())); }

    /// Up to `most` bytes, until the line is silent for a while.
    QByteArray received(qsizetype most = 1'000'000, int silenceMs = 50) const {
        QByteArray all;
        char byte = 0;
        pollfd state{master_, POLLIN, 0};
        while (all.size() < most && ::poll(&state, 1, silenceMs) > 0 && ::read(master_, &byte, 1) == 1)
            all += byte;
        return all;
    }

    /// Closes the far side, as pulling the cable does.
    void unplug() { ::close(std::exchange(master_, -1)); }

private:
    int master_ = -1;
    int slave_ = -1;
    QString device_;
};
