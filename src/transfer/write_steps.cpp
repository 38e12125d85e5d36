/// The steps of a write.
#include "text/error_report.h"
#include "text/message_box.h"
#include "text/runtime_failure.h"
#include "text/string_table.h"
#include "transfer/response_codes.h"
#include "transfer/transfer_steps.h"
#include "transfer/xmodem_sender.h"

#include <QScopedValueRollback>

int TransferSteps::fncWriteStep(int state) {
    if (gTransferBusy)
        return 0;
    const QScopedValueRollback<bool> guard(gTransferBusy, true);
    switch (state) {
    case kWriteToStart:
        return startWrite();
    case kImageSent:
        return closeWrite();
    default:
        return state;
    }
}

int TransferSteps::startWrite() {
    try {
        if (fncResultNo(fncStartTransfer(QStringLiteral("51"))) != kResultSuccess) {
            fncEndTransfer();
            return failedWrite();
        }
        sendImage();
        return kImageSent;
    } catch (...) {
        subReportError();
        endTransfer(false);
        return failedWrite();
    }
}

void TransferSteps::sendImage() {
    QString whatHappened;
    const int result = fncXmodemSend([this](int bytes) { screen_.setProgress(bytes); }, whatHappened);
    if (result != kXmodemSent)
        throw RuntimeFailure(result, whatHappened);
}

int TransferSteps::failedWrite() {
    showMessageBox(literalText(u"Failed", u"異常終了"), kInformation);
    screen_.setDefaultCursor();
    return kIdleAfterWrite;
}

int TransferSteps::closeWrite() {
    fncEndTransfer();
    if (job_.verificationTicked)
        return kVerificationToRun;
    showMessageBox(literalText(u"Succeed", u"正常終了"), kInformation);
    screen_.setDefaultCursor();
    screen_.showWrittenVersion(job_.unit);
    return kIdleAfterWrite;
}
