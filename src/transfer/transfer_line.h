/// What a transfer needs of the line to the unit.
#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <functional>
#include <optional>

/// The line, the clock and the events, as the transfer sees them; RawLine is the real one.
class TransferLine {
public:
    using Time = std::chrono::steady_clock::time_point;

    virtual ~TransferLine() = default;

    /// Sends operation command `code` to `unit` and returns the response code. Never throws; shows failures.
    virtual QString operation(const QString& code, int unit) = 0;

    /// Discards pending input and output.
    /// @throws RuntimeFailure  the port is not open
    virtual void clear() = 0;
    /// Discards pending input.
    /// @throws RuntimeFailure  the port is not open
    virtual void clearInput() = 0;
    /// Discards pending input, then sends `bytes` in one write. Never throws; shows port errors.
    /// @return 7 (kResultSuccess), or the number of the port error
    virtual int fncSendRaw(const QByteArray& bytes) = 0;
    /// Takes all pending input, without waiting.
    /// @throws RuntimeFailure  the port is closed or gone
    virtual QByteArray received() = 0;
    /// Waits up to `limit` for one byte, serving window events; nothing on time-out.
    /// @throws RuntimeFailure  the port is closed or gone
    virtual std::optional<char> fncWaitByte(std::chrono::milliseconds limit) = 0;
    /// Closes the port until the program starts again.
    virtual void close() = 0;

    virtual Time now() const = 0;
    /// Serves the window events that are pending.
    virtual void serveEvents() = 0;
    /// Serves window events for `time`.
    virtual void pause(std::chrono::milliseconds time) = 0;

    /// Calls `step` every gWaits.tick until stopTicks(), from the event loop.
    virtual void startTicks(std::function<void()> step) = 0;
    /// Makes incoming bytes call the step as well, from holdInput(false) until stopTicks().
    virtual void watchInput() = 0;
    /// While `hold` is set, incoming bytes do not call the step.
    virtual void holdInput(bool hold) = 0;
    virtual void stopTicks() = 0;
};
