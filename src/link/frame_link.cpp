#include "link/frame_link.h"

#include "link/com_port.h"
#include "link/frame.h"
#include "link/ms_comm.h"
#include "link/protocol_words.h"
#include "link/waits.h"
#include "system/event_wait.h"
#include "system/program_end.h"
#include "system/program_folder.h"
#include "system/regular_file.h"
#include "system/runtime_failure.h"
#include "text/message_box.h"
#include "text/string_table.h"

#include <QDateTime>

/// Bytes of the last reply: echoed command code (2), response code (2), data.
static QByteArray gbytRecvData;
bool gblnCommBusy = false;
int gintCommRetry = 0;

using Clock = std::chrono::steady_clock;

static void subWaitCommFree(std::chrono::milliseconds limit) {
    if (gblnCommBusy)
        waitServingEvents(limit, [] { return !gblnCommBusy; });
    gblnCommBusy = false;
}

static void subClearInput() { boundPort().discardInput(); }

static void subSendFrame(const QString& command) { boundPort().output(buildRequestFrame(command)); }

/// Hands the bytes that are waiting to `parser`; @return whether they complete the reply.
static bool takeWaitingBytes(ReplyParser& parser) {
    const QByteArray bytes = boundPort().input(kReplyCapacity);
    return std::any_of(bytes.begin(), bytes.end(), [&parser](char byte) { return parser.take(byte); });
}

/// Appends the local time and `line` to the communication log beside the program.
static void subWriteCommLog(const QString& line) {
    RegularFile log(programFile(QStringLiteral("PelkLog.txt")));
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("yyyy/MM/dd HH:mm:ss"));
    const QByteArray record = QStringLiteral("%1 %2\r\n").arg(time, line).toUtf8();
    if (!log.open(QIODevice::Append) || log.write(record) != record.size() || !log.flush())
        throw RuntimeFailure(failure::kFileAccess, QStringLiteral("%1: %2").arg(log.fileName(), log.errorString()));
}

static QString fncExchange(const QString& command, bool raw, std::chrono::milliseconds timeout) {
    gblnCommBusy = true;
    const Clock::time_point deadline = Clock::now() + timeout;
    subClearInput();
    subSendFrame(command);
    ReplyParser parser(raw, gbytRecvData);
    while (!takeWaitingBytes(parser) && Clock::now() <= deadline)
        boundPort().waitForInput(deadline - Clock::now());
    if (!parser.responseCode().isEmpty())
        subClearInput();
    gblnCommBusy = false;
    if (parser.endCode() == QLatin1String("00") && parser.responseCode().isEmpty())
        subWriteCommLog(parser.logRecord());
    return parser.result();
}

static void subCommErrorBox(const QString& message) {
    if (fncMsgBox(IDS_MSGERR_COMM_TIMEOUT2, kCritical + kOkCancel, message) == kCancel)
        endProgram();
}

static void subReportCommError() { subCommErrorBox(text(IDS_MSGERR_COMM_NG)); }

QString fncSendCommand(const QString& command, bool raw, QByteArray& data, std::chrono::milliseconds timeout,
                       bool silent) {
    constexpr int kLastAttempt = 3;
    subWaitCommFree(gWaits.exchangeMark);
    const QString result = fncExchange(command, raw, timeout);
    data = gbytRecvData;
    if (!silent && result == kCommunicationFault && gintCommRetry >= kLastAttempt)
        subReportCommError();
    return result;
}
