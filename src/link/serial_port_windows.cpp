#include "link/serial_port.h"

#include "link/arrival_notifier.h"
#include "system/runtime_failure.h"
#include "text/string_table.h"

#include <QWinEventNotifier>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <windows.h>

namespace {

/// What Windows does in the background. The memory is its own: what cannot be ended may use it for good.
struct Operation {
    static constexpr qsizetype kCapacity = 1'024;

    OVERLAPPED state{};
    std::array<char, kCapacity> bytes{};
    DWORD events = 0;

    Operation() { state.hEvent = ::CreateEventW(nullptr, /*bManualReset*/ TRUE, FALSE, nullptr); }
    ~Operation() { ::CloseHandle(state.hEvent); }
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
};

QString remedyFor(DWORD error) {
    switch (error) {
    case ERROR_SHARING_VIOLATION:
        return remedy::inUse();
    case ERROR_SEM_TIMEOUT:
        return remedy::noData();
    case ERROR_INVALID_PARAMETER:
        return remedy::line();
    default:
        return remedy::gone();
    }
}

/// The settings of the line that are the same for each port.
DCB lineSettings(DCB line) {
    line.BaudRate = CBR_38400;
    line.ByteSize = 8;
    line.Parity = NOPARITY;
    line.StopBits = ONESTOPBIT;
    line.fBinary = TRUE;
    line.fDtrControl = DTR_CONTROL_ENABLE;
    line.fRtsControl = RTS_CONTROL_ENABLE;
    line.fParity = line.fOutxCtsFlow = line.fOutxDsrFlow = line.fDsrSensitivity = FALSE;
    line.fOutX = line.fInX = line.fErrorChar = line.fNull = line.fAbortOnError = FALSE;
    return line;
}

/// Whether two settings are the same in what decides how bytes come and go.
bool isSameLine(const DCB& a, const DCB& b) {
    const auto flags = [](const DCB& line) {
        return line.fBinary | line.fParity << 1 | line.fOutxCtsFlow << 2 | line.fOutxDsrFlow << 3 |
               line.fDsrSensitivity << 4 | line.fOutX << 5 | line.fInX << 6 | line.fErrorChar << 7 | line.fNull << 8;
    };
    return a.BaudRate == b.BaudRate && a.ByteSize == b.ByteSize && a.Parity == b.Parity && a.StopBits == b.StopBits &&
           flags(a) == flags(b);
}

class WindowsPort final : public SerialPort {
public:
    /// @param name  of the port, in messages
    WindowsPort(HANDLE port, QString name) : port_(port), name_(std::move(name)) {}

    ~WindowsPort() override {
        discardOutput();
        ::ResetEvent(arrival());
        // Ends the watch.
        ::SetCommMask(port_, 0);
        ::CloseHandle(port_);
        if (isWatching() && ::WaitForSingleObject(arrival(), kEndTime) != WAIT_OBJECT_0)
            (void)watch_.release();
    }

    void setLine() {
        DCB line{};
        line.DCBlength = sizeof line;
        COMMTIMEOUTS timeouts{};
        // A read takes what is waiting, and waits for nothing.
        timeouts.ReadIntervalTimeout = MAXDWORD;
        if (::GetCommState(port_, &line) == 0)
            fail("line settings");
        DCB asked = lineSettings(line);
        if (::SetCommState(port_, &asked) == 0 || ::GetCommState(port_, &line) == 0 ||
            ::SetCommTimeouts(port_, &timeouts) == 0 || ::SetCommMask(port_, EV_RXCHAR) == 0)
            fail("line settings");
        if (!isSameLine(line, asked))
            fail("line settings", ERROR_INVALID_PARAMETER);
        discardInput();
        discardOutput();
    }

    qsizetype read(char* bytes, qsizetype most) override {
        auto operation = std::make_unique<Operation>();
        const auto wanted = static_cast<DWORD>(std::min(most, Operation::kCapacity));
        const bool begun = ::ReadFile(port_, operation->bytes.data(), wanted, nullptr, &operation->state) != 0;
        const DWORD count = finish("read", operation, begun, kEndTime);
        if (count > 0)
            std::memcpy(bytes, operation->bytes.data(), count);
        return count;
    }

    qsizetype write(const char* bytes, qsizetype count, std::chrono::nanoseconds limit) override {
        auto operation = std::make_unique<Operation>();
        const auto wanted = static_cast<DWORD>(std::min(count, Operation::kCapacity));
        std::memcpy(operation->bytes.data(), bytes, wanted);
        const bool begun = ::WriteFile(port_, operation->bytes.data(), wanted, nullptr, &operation->state) != 0;
        const DWORD written = finish("write", operation, begun, milliseconds(limit));
        if (written == 0)
            fail("write", ERROR_SEM_TIMEOUT);
        return written;
    }

    void waitForInput(std::chrono::nanoseconds limit) override {
        watch();
        ::WaitForSingleObject(arrival(), milliseconds(limit));
    }

    void discardInput() override { ::PurgeComm(port_, PURGE_RXCLEAR); }
    void discardOutput() override { ::PurgeComm(port_, PURGE_TXABORT | PURGE_TXCLEAR); }
    std::unique_ptr<ArrivalNotifier> notifier(std::function<void()> arrived) override;

    /// The event that is set after watch() as soon as a byte is waiting, or the port is gone.
    HANDLE arrival() const { return watch_->state.hEvent; }

    void watch() {
        ::ResetEvent(arrival());
        // A port that cannot watch must at least not take all processor time.
        if (static_cast<LONG>(watch_->state.Internal) < 0)
            ::Sleep(1);
        const bool begun = isWatching() || (::WaitCommEvent(port_, &watch_->events, &watch_->state) == 0 &&
                                            ::GetLastError() == ERROR_IO_PENDING);
        if (!begun || hasInput())
            ::SetEvent(arrival());
    }

private:
    /// Within that time ends what waits for nothing, or has been cancelled. Milliseconds.
    static constexpr DWORD kEndTime = 1'000;

    static DWORD milliseconds(std::chrono::nanoseconds time) {
        return static_cast<DWORD>(std::chrono::ceil<std::chrono::milliseconds>(time).count());
    }

    bool isWatching() const { return watch_->state.Internal == STATUS_PENDING; }

    /// A failure counts as input: the next read meets it.
    bool hasInput() const {
        COMSTAT status{};
        DWORD errors = 0;
        return ::ClearCommError(port_, &errors, &status) == 0 || status.cbInQue > 0;
    }

    /// Waits up to `limit` milliseconds for the end of an operation; what has not ended then is cancelled.
    /// @param begun  the answer of the call that has begun it
    /// @return how many bytes it has moved
    DWORD finish(const char* doing, std::unique_ptr<Operation>& operation, bool begun, DWORD limit) const {
        DWORD count = 0;
        if (!begun && ::GetLastError() != ERROR_IO_PENDING)
            fail(doing);
        if (::GetOverlappedResultEx(port_, &operation->state, &count, limit, FALSE) != 0)
            return count;
        if (::GetLastError() != WAIT_TIMEOUT)
            fail(doing);
        ::CancelIoEx(port_, &operation->state);
        if (::GetOverlappedResultEx(port_, &operation->state, &count, kEndTime, FALSE) != 0)
            return count;
        const DWORD error = ::GetLastError();
        if (error == WAIT_TIMEOUT)
            (void)operation.release();
        if (error != ERROR_OPERATION_ABORTED)
            fail(doing, error == WAIT_TIMEOUT ? DWORD{ERROR_SEM_TIMEOUT} : error);
        return count;
    }

    [[noreturn]] void fail(const char* doing, DWORD error = ::GetLastError()) const {
        throw portFailure(failure::kDeviceIo, name_, doing, static_cast<int>(error), remedyFor(error));
    }

    HANDLE port_;
    QString name_;
    std::unique_ptr<Operation> watch_ = std::make_unique<Operation>();
};

class Notifier final : public ArrivalNotifier {
public:
    Notifier(WindowsPort& port, std::function<void()> arrived) : port_(port), notifier_(port.arrival()) {
        connect(&notifier_, &QWinEventNotifier::activated, this, [this, call = std::move(arrived)] {
            // Before the call, which may close the port.
            port_.watch();
            call();
        });
        port_.watch();
    }

    void setEnabled(bool enabled) override {
        notifier_.setEnabled(enabled);
        if (enabled)
            port_.watch();
    }

private:
    WindowsPort& port_;
    QWinEventNotifier notifier_;
};

std::unique_ptr<ArrivalNotifier> WindowsPort::notifier(std::function<void()> arrived) {
    return std::make_unique<Notifier>(*this, std::move(arrived));
}

}  // namespace

std::unique_ptr<SerialPort> openSerialPort(int number) {
    const QString name = QStringLiteral("COM%1").arg(number);
    const std::wstring path = (QStringLiteral(R"(\\.\)") + name).toStdWString();
    const HANDLE opened = ::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, /*dwShareMode*/ 0, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
    const DWORD error = ::GetLastError();
    if (opened == INVALID_HANDLE_VALUE && error == ERROR_FILE_NOT_FOUND)
        throw RuntimeFailure(failure::kInvalidPort,
                             textByOffset({u"%1: there is no such port; the device manager shows which there are",
                                           u"%1 はありません。デバイスマネージャーで確認してください"})
                                 .arg(name));
    if (opened == INVALID_HANDLE_VALUE && (error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION))
        throw portFailure(failure::kPortOpen, name, "open", static_cast<int>(error), remedy::inUse());
    if (opened == INVALID_HANDLE_VALUE)
        throw portFailure(failure::kDeviceIo, name, "open", static_cast<int>(error), remedyFor(error));
    auto port = std::make_unique<WindowsPort>(opened, name);
    port->setLine();
    return port;
}
