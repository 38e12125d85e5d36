#include "transfer/byte_wait.h"

#include "link/com_port.h"

#include <QCoreApplication>
#include <QEventLoop>

bool gWaitTimeUp = false;

ByteWait::ByteWait() : byteArrived_(boundPort().descriptor(), QSocketNotifier::Read) {
    timerWait_.setTimerType(Qt::PreciseTimer);
    timerWait_.setSingleShot(true);
    timerWait_.callOnTimeout([] { gWaitTimeUp = true; });
}

int ByteWait::fncWaitByte(std::chrono::milliseconds timeout) {
    gWaitTimeUp = false;
    timerWait_.start(timeout);
    QEventLoop::ProcessEventsFlags events = QEventLoop::AllEvents;
    while (true) {
        QCoreApplication::processEvents(events);
        const QByteArray byte = boundPort().input(1);
        if (!byte.isEmpty())
            return static_cast<unsigned char>(byte[0]);
        if (gWaitTimeUp)
            return kTimeUp;
        events = QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents;
    }
}
