#include "link/device_commands.h"

#include "link/frame_link.h"
#include "link/protocol_words.h"
#include "link/waits.h"
#include "system/runtime_failure.h"
#include "system/standard_error.h"
#include "text/characters.h"
#include "text/error_report.h"
#include "text/message_box.h"
#include "text/string_table.h"

int gUnitNo = 0;
QString gUnitStatus;
int gSensorCount = 0;

/// Runs `command`, which gives its result in its argument, and turns a failure into a message and "9999".
template <typename Command>
static QString trapped(Command command) {
    QString result;
    try {
        command(result);
        return result;
    } catch (...) {
        // The message box has no room for the cause.
        complain(currentFailure());
        if (trimBlanks(result).isEmpty())
            fncMsgBox(IDS_MSGERR_COMM_TIMEOUT, kCritical, result);
        else
            fncMsgBox(IDS_MSGERR_COMM_EXCEPTION, kCritical, result);
        return kNoReply;
    }
}

static QString hexDigits(int value, int digits) {
    const uint mask = (1U << (4 * digits)) - 1;
    return QStringLiteral("%1").arg(static_cast<uint>(value) & mask, digits, 16, QLatin1Char('0')).toUpper();
}

QString fncSendTextCommand(const QString& command, QByteArray& data) {
    return trapped([&](QString& result) { result = fncSendCommand(command, true, data, gWaits.reply, false); });
}

/// The decimal number that `characters` are, blanks around it allowed.
static int decimalNumber(const QByteArray& characters) {
    bool isNumber = false;
    const int number = characters.trimmed().toInt(&isNumber);
    if (!isNumber)
        throw RuntimeFailure(failure::kTypeMismatch,
                             textByOffset({u"The number of sensors in the status reply is not a number: \"%1\"",
                                           u"ステータス応答のセンサ台数が数値ではありません: \"%1\""})
                                 .arg(singleByteText(characters)));
    return number;
}

QString fncReadUnitStatus(const QString& command, QByteArray& data) {
    gUnitStatus.clear();
    gSensorCount = 0;
    return trapped([&](QString& result) {
        result = fncSendCommand(command, true, data, gWaits.reply, false);
        if (result != kNormalEnd)
            return;
        gUnitStatus = singleByteText(data.mid(kReplyData, 2));
        gSensorCount = decimalNumber(data.mid(kReplyData + 2, 2));
    });
}

QString fncReadVariable(const QString& type, int address, int count, QByteArray& data,
                        std::chrono::milliseconds timeout, bool silent) {
    return trapped([&](QString& result) {
        const QString command =
            QStringLiteral("0101") + type + hexDigits(address, 4) + QStringLiteral("00") + hexDigits(count, 4);
        result = fncSendCommand(command, false, data, timeout, silent);
    });
}

QString fncOperationCommand(const QString& code, int related) {
    return trapped([&](QString& result) {
        const bool startsTransfer = code == kStartDownload || code == kStartUpload;
        const QString tail = startsTransfer ? QStringLiteral("0C00") : QStringLiteral("0000");
        QByteArray reply;
        result = fncSendCommand(QStringLiteral("3005") + code + hexDigits(related, 2) + tail, false, reply,
                                gWaits.operationReply, false);
    });
}

int fncCheckSensorComm() {
    constexpr int kNoNumber = 8;
    QByteArray reply;
    const QString code = fncSendTextCommand(kCheckSensor, reply);
    bool isNumber = false;
    const int number = code.toInt(&isNumber);
    return isNumber ? number : kNoNumber;
}
