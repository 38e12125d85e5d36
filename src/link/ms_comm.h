/// The serial port.
///
/// The only way to a port. Used from the user-interface thread only.
#pragma once

#include "link/arrival_notifier.h"
#include "link/serial_port.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// One serial port, addressed by its COM number, at 38400 bit/s, no parity, 8 data bits, 1 stop bit, no flow control.
///
/// On Linux COM n is the link `ports/com<n>` in the program's folder, without one the link `com<n>` there, without
/// either `/dev/ttyS<n-1>`; on Windows it is the system's own. After an unplug the next read or write throws.
class MSComm {
public:
    /// Number of the port that the next open() opens; throws nothing, whatever the number.
    void setCommPort(int number) { number_ = number; }

    bool isOpen() const { return port_ != nullptr; }

    /// Opens the port for this program alone and sets its line, whatever it was before.
    ///
    /// @param settings  "38400,n,8,1", the only line that the units know
    /// @throws RuntimeFailure  failure::kInvalidPort if there is no such port; failure::kPortOpen if it is in use;
    ///                         failure::kDeviceIo or failure::kInvalidProperty otherwise
    void open(const QString& settings);

    /// Closes the port and drops what is still to be sent; does nothing when it is closed.
    void close() { port_.reset(); }

    /// Takes up to `most` waiting bytes, oldest first; none when none is waiting.
    /// @throws RuntimeFailure  the port is closed or gone
    QByteArray input(qsizetype most);
    /// Takes the oldest waiting byte, if there is one.
    /// @throws RuntimeFailure  the port is closed or gone
    std::optional<char> inputByte();

    /// Discards every received byte waiting. An error of the port is ignored; the next look at the port meets it.
    void discardInput() const;

    /// Discards every byte that has been written and not yet sent.
    void discardOutput() const;

    /// Queues `bytes` for transmission, in order.
    /// @throws RuntimeFailure  the port is closed or gone, or takes no bytes for gWaits.portWrite
    void output(const QByteArray& bytes);

    /// Sleeps until a byte is waiting, the port is gone, a signal comes, or `limit` has passed. No window events run.
    /// @throws RuntimeFailure  the port is closed
    void waitForInput(std::chrono::nanoseconds limit) const;

    /// Calls `arrived` from the event loop as long as bytes are waiting, or the port is gone.
    /// @throws RuntimeFailure  the port is closed
    std::unique_ptr<ArrivalNotifier> notifier(std::function<void()> arrived) const;

private:
    SerialPort& port() const;

    int number_ = 1;
    std::unique_ptr<SerialPort> port_;
};
