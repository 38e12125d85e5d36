/// Waiting for one byte from the unit while the windows stay alive.
#pragma once

#include <QSocketNotifier>
#include <QTimer>

#include <chrono>

/// Set when the time of the byte wait under way is up.
extern bool gWaitTimeUp;

/// The byte wait of one image send; asleep until a byte, a window event or the time-out comes.
class ByteWait {
public:
    /// What fncWaitByte() gives when the time is up.
    static constexpr int kTimeUp = 4098;

    /// @throws RuntimeFailure  the port is not open
    ByteWait();

    /// Takes one byte; a byte that is waiting wins over an elapsed time-out.
    ///
    /// Window events run before each look at the port.
    /// @return 0 to 255, or kTimeUp
    /// @throws RuntimeFailure  the port is closed or gone
    int fncWaitByte(std::chrono::milliseconds timeout);

private:
    QSocketNotifier byteArrived_;
    QTimer timerWait_;
};
