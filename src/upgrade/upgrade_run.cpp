/// Upgrade run of the main window: "Start upgrade".
#include "link/device_commands.h"
#include "text/error_report.h"
#include "text/message_box.h"
#include "text/string_table.h"
#include "upgrade/main_window.h"

#include <QLabel>
#include <QPushButton>

void frmMain::cmdUpgrade_Click() {
    if (TransferRun::isRunning())
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
    run_.write(job);
}

/// Whether the sensor amplifier answers normally, or the operator wants to go on all the same.
bool frmMain::confirmCommunication() {
    return fncCheckSensorComm() == 0 || fncMsgBox(IDS_MSGERR_NOTCHECK_CONFIRM, kOkCancel) == kOk;
}
