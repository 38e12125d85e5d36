#include "transfer/transfer_steps.h"

#include "link/com_port.h"
#include "link/frame_link.h"
#include "text/error_report.h"
#include "text/string_table.h"
#include "transfer/block_receiver.h"
#include "transfer/image_buffers.h"
#include "transfer/raw_send.h"
#include "transfer/xmodem_packet.h"

#include <QCoreApplication>

int gTransferState = 0;
bool gTransferBusy = false;

/// Sends operation command `code` to the target unit, up to three times in all, until it is carried out.
///
/// The attempt number is left in gintCommRetry: the frame link reports a failure only at the last attempt.
/// @return the response of the last attempt
QString TransferSteps::sendWithRetries(const QString& code) const {
    constexpr int kLastAttempt = 3;
    QString response = fncOperationCommand(code, job_.unit);
    if (response == kNormalEnd)
        return response;
    for (gintCommRetry = 2; gintCommRetry <= kLastAttempt; ++gintCommRetry) {
        response = fncOperationCommand(code, job_.unit);
        if (response == kNormalEnd)
            break;
    }
    return response;
}

static QString refusal(const QString& code, const QString& response) {
    return messageText(u"The unit did not carry out command %1 in three attempts; its last answer: %2",
                       u"コマンド %1 を3回送信しましたが、実行されませんでした。最後の応答: %2")
        .arg(code, response.isEmpty() ? messageText(u"unusable", u"無効") : response);
}

/// Puts the unit into its download state with "51", or into its upload state with "52".
/// @return the unit's response, or "" after three failed attempts of the command itself, which have been reported
QString TransferSteps::fncStartTransfer(const QString& code) {
    awake_.emplace();
    boundPort().discardInput();
    boundPort().discardOutput();
    gReadBuf.fill('\0');
    gReadCount = 0;
    if (code == QLatin1String("51")) {
        QString prepared = sendWithRetries(QStringLiteral("50"));
        if (prepared != kNormalEnd)
            return prepared;
        gintCommRetry = 0;
    }
    QString started = sendWithRetries(code);
    if (started != kNormalEnd) {
        subReportError(refusal(code, started));
        return {};
    }
    if (code == QLatin1String("52")) {
        fncSendRaw(QByteArray(1, kNak));
        subStartReceive();
    }
    screen_.showProgress();
    screen_.startCommTimer();
    return started;
}

QString TransferSteps::fncEndTransfer() { return endTransfer(job_.verificationTicked); }

/// Closes a transfer, whatever happened in it: the unit returns to normal operation and the main window to its
/// operator.
///
/// When a verification follows, it is the one that sends the last command and stops the timer.
/// @return the unit's response to the last command
QString TransferSteps::endTransfer(bool verificationFollows) {
    if (!verificationFollows)
        screen_.stopCommTimer();
    QString response = fncOperationCommand(QStringLiteral("54"), job_.unit);
    QCoreApplication::processEvents();
    if (!verificationFollows) {
        response = fncOperationCommand(QStringLiteral("53"), job_.unit);
        QCoreApplication::processEvents();
    }
    screen_.unloadProgress();
    screen_.enableWindow();
    awake_.reset();
    return response;
}
