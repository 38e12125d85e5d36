#include "transfer/transfer_steps.h"

#include "link/com_port.h"
#include "link/device_commands.h"
#include "link/frame_link.h"
#include "text/error_report.h"
#include "text/message_box.h"
#include "text/runtime_failure.h"
#include "text/string_table.h"
#include "transfer/response_codes.h"
#include "transfer/xmodem_sender.h"

#include <QCoreApplication>
#include <QScopedValueRollback>

int gTransferState = 0;
bool gTransferBusy = false;

/// Sends operation command `code` to the target unit, up to three times in all, until it is carried out.
///
/// The attempt number is left in gintCommRetry: the frame link reports a failure only at the last attempt.
/// @return the response of the last attempt
static QString sendWithRetries(const QString& code) {
    constexpr int kLastAttempt = 3;
    QString response = fncOperationCommand(code, gUnitNo);
    if (response == kNormalEnd)
        return response;
    for (gintCommRetry = 2; gintCommRetry <= kLastAttempt; ++gintCommRetry) {
        response = fncOperationCommand(code, gUnitNo);
        if (response == kNormalEnd)
            break;
    }
    return response;
}

static QString refusal(const QString& code, const QString& response) {
    return literalText(u"The unit did not carry out command %1 in three attempts; its last answer: %2",
                       u"コマンド %1 を3回送信しましたが、実行されませんでした。最後の応答: %2")
        .arg(code, response.isEmpty() ? literalText(u"unusable", u"無効") : response);
}

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
        if (fncResultNo(fncStartTransfer(QStringLiteral("51"))) != kResultSuccess)
            return closeFailedWrite();
        sendImage();
        return kImageSent;
    } catch (...) {
        subReportError();
        return closeFailedWrite();
    }
}

void TransferSteps::sendImage() {
    QString whatHappened;
    const int result = fncXmodemSend([this](int bytes) { screen_.setProgress(bytes); }, whatHappened);
    if (result != kXmodemSent)
        throw RuntimeFailure(result, whatHappened);
}

int TransferSteps::closeFailedWrite() {
    fncEndTransfer();
    showMessageBox(literalText(u"Failed", u"異常終了"), kInformation);
    screen_.setDefaultCursor();
    return kIdleAfterWrite;
}

int TransferSteps::closeWrite() {
    fncEndTransfer();
    showMessageBox(literalText(u"Succeed", u"正常終了"), kInformation);
    screen_.setDefaultCursor();
    screen_.showWrittenVersion();
    return kIdleAfterWrite;
}

/// Puts the unit into its download state with "51".
/// @return the unit's response, or "" after three failed attempts of the command itself, which have been reported
QString TransferSteps::fncStartTransfer(const QString& code) {
    awake_.emplace();
    boundPort().discardInput();
    boundPort().discardOutput();
    const QString prepared = sendWithRetries(QStringLiteral("50"));
    if (prepared != kNormalEnd)
        return prepared;
    gintCommRetry = 0;
    const QString started = sendWithRetries(code);
    if (started != kNormalEnd) {
        subReportError(refusal(code, started));
        return {};
    }
    screen_.showProgress();
    screen_.startCommTimer();
    return started;
}

/// Closes a transfer: whatever happened in it, the unit returns to normal operation and the main window to its
/// operator.
/// @return the unit's response to the last command
QString TransferSteps::fncEndTransfer() {
    screen_.stopCommTimer();
    fncOperationCommand(QStringLiteral("54"), gUnitNo);
    QCoreApplication::processEvents();
    const QString response = fncOperationCommand(QStringLiteral("53"), gUnitNo);
    QCoreApplication::processEvents();
    screen_.unloadProgress();
    screen_.enableWindow();
    awake_.reset();
    return response;
}
