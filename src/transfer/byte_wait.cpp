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
    while (true) {
        // A byte that is waiting is an event as well, so that this sleeps only when there is nothing to do at all.
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        const QByteArray byte = boundPort().input(1);
        if (!byte.isEmpty())
            return static_cast<unsigned char>(byte[0]);
        if (gWaitTimeUp)
            return kTimeUp;
    }
}
