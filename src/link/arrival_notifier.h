/// Bytes that come in, as an event.
#pragma once

#include <QObject>

/// Calls a function from the event loop as long as bytes are waiting, or the port is gone; MSComm::notifier() makes it.
///
/// To be deleted before the port closes, and by deleteLater() where its function may be running.
class ArrivalNotifier : public QObject {
public:
    virtual void setEnabled(bool enabled) = 0;
};
