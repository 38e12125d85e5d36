#include "support/peer.h"

#include <QElapsedTimer>

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

ScriptedPeer::ScriptedPeer(std::vector<QByteArray> replies)
    : replies_(replies.begin(), replies.end()), thread_([this] { serve(); }) {}

ScriptedPeer::~ScriptedPeer() {
    stop_ = true;
    thread_.join();
}

std::vector<QByteArray> ScriptedPeer::requests() {
    const std::lock_guard lock(mutex_);
    return requests_;
}

void ScriptedPeer::serve() {
    QByteArray request;
    while (!stop_) {
        pollfd state{pty_.farSide(), POLLIN, 0};
        char byte = 0;
        // Nobody has the near side open yet, or any more: look again a little later.
        if (::poll(&state, 1, 5) <= 0 || ::read(pty_.farSide(), &byte, 1) != 1) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            continue;
        }
        request += byte;
        if (request.size() < 2 || request[request.size() - 2] != 0x03)
            continue;
        const std::lock_guard lock(mutex_);
        requests_.push_back(std::exchange(request, {}));
        if (replies_.empty())
            continue;
        pty_.send(replies_.front());
        replies_.pop_front();
    }
}

QByteArray replyFrame(const QByteArray& text) {
    char check = 0x03;
    for (const char c : text)
        check = static_cast<char>(check ^ c);
    return '\x02' + text + '\x03' + check;
}
