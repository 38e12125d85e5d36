/// A transfer without windows or port: a screen that records, and a line in memory.
#pragma once

#include "link/protocol_words.h"
#include "simulator/image.h"
#include "system/runtime_failure.h"
#include "system/sleep_inhibitor.h"
#include "transfer/image_file.h"
#include "transfer/response_codes.h"
#include "transfer/transfer_run.h"
#include "transfer/xmodem_packet.h"

#include <QByteArrayList>

using namespace std::chrono_literals;

/// An image without two blocks alike.
inline QByteArray someImage() {
    const units::Bytes made = units::makeImage("SVA-STD", 13500, 7);
    return {reinterpret_cast<const char*>(made.data()), static_cast<qsizetype>(made.size())};
}

/// What a unit that holds `image` sends, up to the second EOT; `noise` before each block and EOT.
inline QByteArrayList upload(const QByteArray& image, const QByteArray& noise = {}) {
    QByteArrayList pieces;
    for (qsizetype at = 0; at < image.size(); at += kBlockSize)
        pieces += noise + QByteArray::fromHex("010000") + image.mid(at, kBlockSize) + '?';
    return pieces + QByteArrayList(2, noise + kEot);
}

class FakeScreen final : public TransferScreen {
public:
    explicit FakeScreen(QStringList& told) : told_(told) {}

    void showProgress() override {
        told_ += SleepInhibitor::isHeld() ? "progress" : "progress, asleep";
        bytes = 0;
    }
    void setProgress(int acknowledged) override {
        if (acknowledged < bytes || acknowledged > kImageSize)
            told_ += "wrong progress";
        bytes = acknowledged;
    }
    void announceVerification() override { told_ += "verification"; }
    void releaseWindow() override { told_ += "release"; }
    void raiseWindow() override { told_ += "raise"; }
    void setDefaultCursor() override { told_ += "cursor"; }
    void showWrittenVersion(int unit) override { told_ += QString("version of %1").arg(unit); }

    int bytes = 0;  ///< the progress

private:
    QStringList& told_;
};

/// A line in memory: the test says what the unit does, and the clock advances when the run waits.
class MemoryLine : public TransferLine {
public:
    explicit MemoryLine(QStringList& told) : told_(told) {}

    QString operation(const QString& code, int unit) override {
        told_ += code + (unit == kSensorAmplifier ? "" : "@0");
        return refusals.removeOne(code) ? refusal : QString(kNormalEnd);
    }
    void clear() override {
        if (isGone)
            throw RuntimeFailure(failure::kPortNotOpen, QStringLiteral("closed"));
        sent.clear();
    }
    void clearInput() override {}
    int fncSendRaw(const QByteArray& bytes) override {
        sent += bytes;
        if (sent.size() != failsAtSend)
            return kResultSuccess;
        whileServing();
        return failure::kDeviceIo;
    }
    QByteArray received() override { return input.isEmpty() ? QByteArray() : input.takeFirst(); }
    std::optional<char> fncWaitByte(std::chrono::milliseconds limit) override {
        const std::optional<char> byte = answer();
        time += byte ? 0ms : limit;
        return byte;
    }
    void close() override { told_ += "close"; }
    Time now() const override { return time; }
    void serveEvents() override { whileServing(); }
    void pause(std::chrono::milliseconds length) override {
        told_ += QString("pause of %1").arg(length.count());
        whileServing();
    }
    void startTicks(std::function<void()> step) override {
        step_ = std::move(step);
        nextTick_ = time + kTick;
    }
    void watchInput() override {}
    void holdInput(bool hold) override { isHeld = hold; }
    void stopTicks() override { step_ = {}; }

    bool ticks() const { return step_ != nullptr; }
    void tick() {
        time = std::max(time, nextTick_);
        nextTick_ = time + kTick;
        // A copy, as the step may stop the ticks.
        if (const auto step = step_)
            step();
    }

    QStringList refusals;        ///< operation commands that are refused, once each
    QString refusal = "2203";    ///< the response to them
    QByteArrayList input;        ///< what comes in during a read, in pieces
    QByteArray answers = "C\6";  ///< before any packet, to the first...; the last one repeats; '.': silence
    bool isGone = false;         ///< the port
    bool isHeld = false;         ///< bytes that come call no step
    qsizetype failsAtSend = 0;   ///< number of the raw send that fails; 0: none
    std::function<void()> whileServing = [] {};
    QByteArrayList sent;  ///< in this transfer
    Time time{};

protected:
    virtual std::optional<char> answer() {
        const char byte = answers[std::min(sent.size(), answers.size() - 1)];
        return byte == '.' ? std::nullopt : std::optional(byte);
    }

private:
    static constexpr auto kTick = 100ms;

    QStringList& told_;
    std::function<void()> step_;
    Time nextTick_{};
};
