/// The other side of a pseudo-terminal, scripted byte for byte.
#pragma once

#include "support/print.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

/// A pseudo-terminal with nobody on it: the test writes and reads its far side.
class Pty {
public:
    Pty();
    ~Pty();
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    QString device() const { return device_; }
    int farSide() const { return master_; }
    void send(const QByteArray& bytes) const;
    /// Everything that has come until the line is silent for 50 ms.
    QByteArray received() const;
    /// Closes the far side, as pulling the cable does.
    void unplug();

private:
    int master_ = -1;
    QString device_;
};

/// Answers each request frame with the next of its replies, and nothing when there is none left.
class ScriptedPeer {
public:
    explicit ScriptedPeer(std::vector<QByteArray> replies);
    ~ScriptedPeer();
    ScriptedPeer(const ScriptedPeer&) = delete;
    ScriptedPeer& operator=(const ScriptedPeer&) = delete;

    QString device() const { return pty_.device(); }
    /// The request frames that came, whole.
    std::vector<QByteArray> requests();

private:
    void serve();

    Pty pty_;
    std::mutex mutex_;
    std::deque<QByteArray> replies_;
    std::vector<QByteArray> requests_;
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

/// A reply frame around `text`, which begins with the node number; its check byte is right.
QByteArray replyFrame(const QByteArray& text);
