/// A bare pseudo-terminal.
#pragma once

#include <QByteArray>
#include <QString>

#include <thread>

class Babbler;

/// A pseudo-terminal with nobody on it: the test writes and reads its far side.
class Pty {
public:
    Pty();
    ~Pty();
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    QString device() const { return device_; }
    void send(const QByteArray& bytes) const;
    /// Everything that has come until the line is silent for 50 ms.
    QByteArray received() const;
    /// Closes the far side, as pulling the cable does.
    void unplug();

private:
    friend Babbler;

    int master_ = -1;
    QString device_;
};

/// Sends the same bytes again and again, as fast as they are taken, for as long as it lives.
class Babbler {
public:
    Babbler(const Pty& pty, QByteArray bytes);

private:
    std::jthread thread_;
};
