/// Save run of the main window: the target unit's firmware goes into a file.
#include "text/error_report.h"
#include "transfer/image_buffers.h"
#include "upgrade/main_window.h"

void frmMain::cmdPresent_Click() {
    if (isBusy())
        return;
    if (!runTrapped([this] { startSave(); })) {
        enableWindow();
        setDefaultCursor();
    }
}

/// The timer `CommTimer` drives the steps that follow.
void frmMain::startSave() {
    const QString chosen = chooseFile(QFileDialog::AcceptSave, gSaveFileName);
    if (chosen.isEmpty())
        return;
    gSaveFileName = chosen;
    disableWindow();
    steps_.begin(chosenJob());
    gTransferState = steps_.fncReadStep(kReadToStart);
}
