/// Verification of the main window: what has been written is read back and compared.
#include "link/com_port.h"
#include "link/device_commands.h"
#include "link/waits.h"
#include "system/event_wait.h"
#include "text/message_box.h"
#include "text/string_table.h"
#include "transfer/image_buffers.h"
#include "upgrade/main_window.h"

static void wait(std::chrono::milliseconds time) {
    waitServingEvents(time, [] { return false; });
}

void frmMain::verify() {
    verifying_ = true;
    disableWindow();
    progressDialog().setMessage(literalText(u"Verification...", u"ベリファイ中..."));
    readBack();
    stopCommTimer();
    fncOperationCommand(QStringLiteral("54"), steps_.job().unit);
    fncOperationCommand(QStringLiteral("53"), steps_.job().unit);
    subPortClose();
    wait(gWaits.verificationPause);
    showVerificationResult();
    stopCommTimer();
    gTransferState = kIdleAfterVerification;
    verifying_ = false;
    show();
    raise();
    enableWindow();
    setDefaultCursor();
}

/// Reads the unit's firmware into gReadBuf, one step a tick.
void frmMain::readBack() {
    gTransferState = kReadToStart;
    while (gTransferState != kIdleAfterRead) {
        wait(gWaits.tick);
        gTransferState = steps_.fncReadStep(gTransferState);
    }
}

void frmMain::showVerificationResult() {
    const bool differs = fncCompareImage() != 0;
    unloadProgress();
    const QString title = literalText(u"Dravolt", u"ドラボルト");
    if (differs)
        showMessageBox(literalText(u"Failed", u"ベリファイ失敗"), kCritical, title);
    else
        showMessageBox(literalText(u"Succeed", u"正常終了"), kInformation, title);
}
