/// Upgrade run of the main window: "Start upgrade", and the ticks that drive every transfer.
#include "link/waits.h"
#include "text/error_report.h"
#include "text/message_box.h"
#include "text/string_table.h"
#include "transfer/communication_check.h"
#include "upgrade/main_window.h"

#include <QLabel>
#include <QPushButton>

void frmMain::cmdUpgrade_Click() {
    if (isBusy())
        return;
    if (!runTrapped([this] { startUpgrade(); })) {
        enableWindow();
        setDefaultCursor();
    }
}

void frmMain::startUpgrade() {
    const TransferJob job = chosenJob();
    if (lblTitle[rowOf(job.unit)]->text() != lblTitle[kImageRow]->text()) {
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
    steps_.begin(job);
    gTransferState = steps_.fncWriteStep(kWriteToStart);
}

/// Whether the sensor amplifier answers normally, or the operator wants to go on all the same.
bool frmMain::confirmCommunication() {
    return fncCheckSensorComm() == 0 || fncMsgBox(IDS_MSGERR_NOTCHECK_CONFIRM, kOkCancel) == kOk;
}

void frmMain::startCommTimer() { CommTimer.start(gWaits.tick); }

void frmMain::stopCommTimer() { CommTimer.stop(); }

void frmMain::CommTimer_Timer() {
    if (isBusy())
        return;
    runTrapped([this] {
        if (gTransferState >= kReceivingBlocks && gTransferState <= kReadEnded)
            gTransferState = steps_.fncReadStep(gTransferState);
        if (gTransferState >= kFirstWriteTick && gTransferState <= kImageSent)
            gTransferState = steps_.fncWriteStep(gTransferState);
        if (gTransferState == kVerificationToRun)
            verify();
    });
}
