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

    /// Sends operation command `code` to `unit` and gives the response code. Never throws; a failure has been shown.
    virtual QString operation(const QString& code, int unit) = 0;

    /// Discards what has come in and what has not gone out.
    /// @throws RuntimeFailure  the port is not open
    virtual void clear() = 0;
    /// Discards what has come in.
    /// @throws RuntimeFailure  the port is not open
    virtual void clearInput() = 0;
    /// Discards what has come in, then sends `bytes` in one write. Never throws: a port error is shown.
    /// @return 7 (kResultSuccess), or the number of the port error
    virtual int fncSendRaw(const QByteArray& bytes) = 0;
    /// Takes everything that has come in, without waiting.
    /// @throws RuntimeFailure  the port is closed or gone
    virtual QByteArray received() = 0;
    /// Waits for one byte and serves window events meanwhile; nothing when `limit` has passed.
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
    /// Lets bytes that come in call the step as well, once holdInput(false) is called; ends with stopTicks().
    virtual void watchInput() = 0;
    /// While `hold` is set, bytes that come in do not call the step.
    virtual void holdInput(bool hold) = 0;
    virtual void stopTicks() = 0;
};
