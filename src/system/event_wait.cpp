#include "system/event_wait.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

bool waitServingEvents(std::chrono::milliseconds limit, const std::function<bool()>& done) {
    bool timeUp = false;
    QTimer deadline;
    deadline.setTimerType(Qt::PreciseTimer);
    deadline.setSingleShot(true);
    deadline.callOnTimeout([&timeUp] { timeUp = true; });
    deadline.start(limit);
    while (!done()) {
        if (timeUp)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}
