#include "link/com_port.h"

#include "system/runtime_failure.h"
#include "system/standard_error.h"
#include "text/message_box.h"
#include "text/string_table.h"

MSComm* gobjComm = nullptr;

MSComm& boundPort() {
    if (gobjComm == nullptr)
        throw RuntimeFailure(failure::kPortNotOpen,
                             textByOffset({u"No COM port is open", u"COMポートが開いていません"}));
    return *gobjComm;
}

/// Opens the bound port; @return 0, or the number of the failure, whose description goes to standard error.
static int tryOpen(const QString& settings) {
    try {
        gobjComm->open(settings);
        gobjComm->discardInput();
        return 0;
    } catch (const RuntimeFailure& f) {
        complain(f.description());
        return f.number();
    }
}

bool fncPortOpen(int port, const QString& settings) {
    static MSComm comm;
    gobjComm = &comm;
    if (gobjComm->isOpen()) {
        showMessageBox(text(IDS_MSGERR_COMM_PORTING), kCritical);
        return false;
    }
    gobjComm->setCommPort(port);
    const int number = tryOpen(settings);
    if (number == failure::kInvalidPort)
        showMessageBox(text(IDS_MSGERR_COMM_PORT1) + QString::number(port) + text(IDS_MSGERR_COMM_PORT2), kCritical);
    else if (number != 0)
        showMessageBox(text(IDS_MSGERR_COMM_PORTING), kCritical);
    return number == 0;
}

void subPortClose() {
    if (gobjComm != nullptr)
        gobjComm->close();
    gobjComm = nullptr;
}
