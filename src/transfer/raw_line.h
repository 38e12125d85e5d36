/// The line of a transfer on the program's serial port: the one place of the transfer with port, clock and events.
#pragma once

#include "link/arrival_notifier.h"
#include "transfer/transfer_line.h"

#include <QTimer>

#include <memory>

/// Used by the transfer run only; one at a time.
class RawLine final : public TransferLine {
public:
    RawLine();

    QString operation(const QString& code, int unit) override;
    void clear() override;
    void clearInput() override;
    int fncSendRaw(const QByteArray& bytes) override;
    QByteArray received() override;
    std::optional<char> fncWaitByte(std::chrono::milliseconds limit) override;
    void close() override;
    Time now() const override;
    void serveEvents() override;
    void pause(std::chrono::milliseconds time) override;
    void startTicks(std::function<void()> step) override;
    void watchInput() override;
    void holdInput(bool hold) override;
    void stopTicks() override;

private:
    void callStep() const;

    std::function<void()> step_;
    QTimer CommTimer;
    std::unique_ptr<ArrivalNotifier> input_;  ///< null while bytes that come in call nothing
    Time eventsServed_;                       ///< when window events were served last in a byte wait
};
