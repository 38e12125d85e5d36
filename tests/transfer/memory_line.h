/// A transfer without windows and port: a screen that remembers, and a line in memory.
#pragma once

#include "text/runtime_failure.h"
#include "transfer/image_file.h"
#include "transfer/response_codes.h"
#include "transfer/transfer_run.h"
#include "transfer/xmodem_packet.h"

#include <QMap>

#include <algorithm>
#include <deque>
#include <vector>

using namespace std::chrono_literals;

class FakeScreen final : public TransferScreen {
public:
    explicit FakeScreen(QStringList& told) : told_(told) {}

    void showProgress() override {
        told_ += "progress";
        bytes_ = 0;
    }
    void setProgress(int value) override {
        onlyRises = onlyRises && value >= bytes_ && value <= kImageSize;
        bytes_ = value;
    }
    void announceVerification() override { told_ += "verification"; }
    void releaseWindow() override { told_ += "release"; }
    void raiseWindow() override { told_ += "raise"; }
    void setDefaultCursor() override { told_ += "cursor"; }
    void showWrittenVersion(int unit) override { told_ += QString("version of %1").arg(unit); }

    bool onlyRises = true;  ///< the progress, up to the size of an image

private:
    QStringList& told_;
    int bytes_ = 0;
};

/// A line in memory: the test says what the unit does, and the clock goes when the run waits.
class MemoryLine : public TransferLine {
public:
    explicit MemoryLine(QStringList& told) : told_(told) {}

    QString operation(const QString& code, int unit) override {
        told_ += code + (unit == kSensorAmplifier ? "" : "@0");
        if (refusals.contains(code) && refusals[code]-- > 0)
            return QStringLiteral("2203");
        return kNormalEnd;
    }
    void clear() override {
        if (isClosed)
            throw RuntimeFailure(failure::kPortNotOpen, QStringLiteral("closed"));
    }
    void clearInput() override { ++cleared; }
    int fncSendRaw(const QByteArray& bytes) override {
        sent.push_back(bytes);
        return sent.size() == failsAtSend ? failure::kDeviceIo : kResultSuccess;
    }
    QByteArray received() override {
        if (input.empty())
            return {};
        QByteArray next = input.front();
        input.pop_front();
        return next;
    }
    std::optional<char> fncWaitByte(std::chrono::milliseconds limit) override {
        const std::optional<char> byte = answer();
        if (!byte)
            time += limit;
        return byte;
    }
    void close() override { isClosed = true; }
    Time now() const override { return time; }
    void serveEvents() override { whileServing(); }
    void pause(std::chrono::milliseconds) override { whileServing(); }
    void startTicks(std::function<void()> step) override {
        step_ = std::move(step);
        nextTick_ = time + kTick;
    }
    void watchInput() override {}
    void holdInput(bool) override {}
    void stopTicks() override { step_ = {}; }

    bool ticks() const { return step_ != nullptr; }
    /// Lets the time up to the next tick pass.
    void tick() {
        time = std::max(time, nextTick_);
        nextTick_ = time + kTick;
        // A copy, as the step may stop the ticks.
        if (const auto step = step_)
            step();
    }

    QMap<QString, int> refusals;   ///< how often an operation command is refused
    std::deque<QByteArray> input;  ///< what comes in during a read, in pieces
    std::size_t failsAtSend = 0;   ///< number of the raw send at which the port fails; 0: never
    std::function<std::optional<char>()> answer = [this] { return sent.empty() ? kCrcStart : kAck; };
    std::function<void()> whileServing = [] {};
    std::vector<QByteArray> sent;
    int cleared = 0;
    bool isClosed = false;
    Time time{};

private:
    static constexpr auto kTick = 100ms;

    QStringList& told_;
    std::function<void()> step_;
    Time nextTick_{};
};
