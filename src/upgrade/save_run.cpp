/// Save run of the main window: the target unit's firmware goes into a file.
#include "text/error_report.h"
#include "upgrade/file_dialog.h"
#include "upgrade/main_window.h"

/// File chosen last; preset in the next dialog.
static QString gSaveFileName;

void frmMain::cmdPresent_Click() {
    if (TransferRun::isRunning())
        return;
    if (!runTrapped([this] { startSave(); })) {
        enableWindow();
        setDefaultCursor();
    }
}

void frmMain::startSave() {
    const QString chosen = chooseFile(*this, QFileDialog::AcceptSave, gSaveFileName);
    if (chosen.isEmpty())
        return;
    gSaveFileName = chosen;
    disableWindow();
    TransferJob job = chosenJob();
    job.file = chosen;
    run_.read(job);
}
