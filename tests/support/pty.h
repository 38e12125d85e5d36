/// A bare pseudo-terminal.
#pragma once

#include <QByteArray>
#include <QString>

/// A pseudo-terminal with nobody on it: the test writes and reads its far side.
class Pty {
public:
    Pty();
    ~Pty() { unplug(); }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    QString device() const { return device_; }
    /// Sends as many of the bytes as the line takes at once.
    void send(const QByteArray& bytes) const;
    /// Everything that has come until the line is silent for 50 ms.
    QByteArray received() const;
    /// Closes the far side, as pulling the cable does.
    void unplug();

private:
    int master_ = -1;
    QString device_;
};
