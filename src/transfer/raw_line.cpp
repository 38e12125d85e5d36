#include "transfer/raw_line.h"

#include "link/com_port.h"
#include "link/device_commands.h"
#include "link/ms_comm.h"
#include "link/waits.h"
#include "system/event_wait.h"
#include "system/runtime_failure.h"
#include "text/message_box.h"
#include "transfer/response_codes.h"

#include <QCoreApplication>

RawLine::RawLine() {
    CommTimer.setTimerType(Qt::PreciseTimer);
    CommTimer.callOnTimeout([this] { callStep(); });
}

QString RawLine::operation(const QString& code, int unit) { return fncOperationCommand(code, unit); }

void RawLine::clear() {
    boundPort().discardInput();
    boundPort().discardOutput();
}

void RawLine::clearInput() { boundPort().discardInput(); }

int RawLine::fncSendRaw(const QByteArray& bytes) {
    try {
        boundPort().discardInput();
        boundPort().output(bytes);
        return kResultSuccess;
    } catch (const RuntimeFailure& f) {
        showMessageBox(f.description(), kCritical, QStringLiteral("エラー"));
        return f.number();
    }
}

QByteArray RawLine::received() {
    constexpr qsizetype kAll = 4'096;
    return boundPort().input(kAll);
}

std::optional<char> RawLine::fncWaitByte(std::chrono::milliseconds limit) {
    // A unit answers within a packet's time. The windows can wait as long, and the byte needs no round of the event
    // loop.
    constexpr std::chrono::milliseconds kAnswerTime(100);
    constexpr std::chrono::milliseconds kEventsTime(250);
    const Time end = now() + limit;
    if (now() - eventsServed_ >= kEventsTime)
        serveEvents();
    boundPort().waitForInput(std::min<std::chrono::nanoseconds>(kAnswerTime, end - now()));
    std::optional<char> byte = boundPort().inputByte();
    if (byte)
        return byte;
    const auto arrival = boundPort().notifier([] {});
    // A byte that is waiting wins over an elapsed limit.
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(std::max(end - now(), Time::duration::zero()));
    waitServingEvents(rest, [&byte] {
        byte = boundPort().inputByte();
        return byte.has_value();
    });
    return byte;
}

void RawLine::close() {
    stopTicks();
    subPortClose();
}

TransferLine::Time RawLine::now() const { return std::chrono::steady_clock::now(); }

void RawLine::serveEvents() {
    QCoreApplication::processEvents();
    eventsServed_ = now();
}

void RawLine::pause(std::chrono::milliseconds time) {
    waitServingEvents(time, [] { return false; });
}

void RawLine::startTicks(std::function<void()> step) {
    step_ = std::move(step);
    CommTimer.start(gWaits.tick);
}

void RawLine::callStep() const {
    // A copy, as the step may replace itself.
    const auto step = step_;
    step();
}

void RawLine::watchInput() {
    input_ = boundPort().notifier([this] { callStep(); });
    input_->setEnabled(false);
}

void RawLine::holdInput(bool hold) {
    if (input_)
        input_->setEnabled(!hold);
}

void RawLine::stopTicks() {
    CommTimer.stop();
    if (!input_)
        return;
    input_->setEnabled(false);
    // It may be the notifier that has called the step.
    input_.release()->deleteLater();
}
