/// What MSComm needs of a serial port; each system has its own side of this header.
#pragma once

#include "link/arrival_notifier.h"
#include "system/runtime_failure.h"

#include <QString>

#include <chrono>
#include <functional>
#include <memory>

/// An open port. Used by MSComm only; its end closes the port and drops what is still to be sent.
///
/// Whatever fails throws portFailure(). Only write() and waitForInput() wait, and no longer than they are told.
class SerialPort {
public:
    SerialPort() = default;
    virtual ~SerialPort() = default;
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    /// Moves up to `most` (at least 1) waiting bytes to `bytes`. @return how many
    virtual qsizetype read(char* bytes, qsizetype most) = 0;
    /// Hands over as many of the `count` bytes as the port takes, at least one.
    /// @throws RuntimeFailure  also when it takes none for `limit`
    virtual qsizetype write(const char* bytes, qsizetype count, std::chrono::nanoseconds limit) = 0;
    /// Sleeps until a byte is waiting, the port is gone, a signal comes, or `limit` (not negative) has passed.
    virtual void waitForInput(std::chrono::nanoseconds limit) = 0;
    /// Discards what has come in, or not gone out. An error is ignored; the next look at the port meets it.
    virtual void discardInput() = 0;
    virtual void discardOutput() = 0;
    /// See MSComm::notifier().
    virtual std::unique_ptr<ArrivalNotifier> notifier(std::function<void()> arrived) = 0;
};

/// Opens port `number`, whatever the number, for this program alone, at 38400 bit/s, 8N1, without flow control.
/// @throws RuntimeFailure  failure::kInvalidPort if there is no such port; failure::kPortOpen if it is in use;
///                         failure::kDeviceIo otherwise
std::unique_ptr<SerialPort> openSerialPort(int number);

/// That `port` has failed while `doing` something, by the system's `error`, with what the operator can do about it.
/// @param number  a number of namespace failure
RuntimeFailure portFailure(int number, const QString& port, const char* doing, int error, const QString& remedy);

/// What the operator can do, in words that follow those of the system.
namespace remedy {
QString inUse();
QString gone();
QString notSerial();
QString noData();
QString line();
}  // namespace remedy
