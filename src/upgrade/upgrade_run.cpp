/// Upgrade run of the main window: from "Start upgrade" to the end of the transfer.
#include "text/error_report.h"
#include "text/message_box.h"
#include "text/string_table.h"
#include "transfer/communication_check.h"
#include "upgrade/main_window.h"

#include <QLabel>
#include <QPushButton>

void frmMain::cmdUpgrade_Click() {
    if (gTransferBusy)
        return;
    if (!runTrapped([this] { startUpgrade(); })) {
        enableWindow();
        setDefaultCursor();
    }
}

void frmMain::startUpgrade() {
    if (lblTitle[static_cast<std::size_t>(targetRow())]->text() != lblTitle[kImageRow]->text()) {
        fncMsgBox(IDS_MSGERR_NOTADAPTED, kOkOnly);
        return;
    }
    disableWindow();
    const bool goOn = confirmCommunication();
    const bool dryRun = !LabelWriteProtect->isHidden();
    if (goOn && dryRun)
        showMessageBox(QStringLiteral("形式認識テストです　書込み処理はスキップします。"), kOkOnly);
    if (!goOn || dryRun) {
        enableWindow();
        setDefaultCursor();
        return;
    }
    progressDialog().cmdCancel->setEnabled(false);
    gTransferState = steps_.fncWriteStep(kWriteToStart);
}

/// Whether the sensor amplifier answers normally, or the operator wants to go on all the same.
bool frmMain::confirmCommunication() {
    return fncCheckSensorComm() == 0 || fncMsgBox(IDS_MSGERR_NOTCHECK_CONFIRM, kOkCancel) == kOk;
}

void frmMain::startCommTimer() {
    CommTimer.start(std::chrono::milliseconds(100));
}

void frmMain::stopCommTimer() {
    CommTimer.stop();
}

void frmMain::CommTimer_Timer() {
    if (gTransferBusy)
        return;
    runTrapped([this] {
        if (gTransferState >= kFirstWriteTick && gTransferState <= kImageSent)
            gTransferState = steps_.fncWriteStep(gTransferState);
    });
}
