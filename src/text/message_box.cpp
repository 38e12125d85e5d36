#include "text/message_box.h"

#include "system/runtime_failure.h"
#include "system/standard_error.h"
#include "text/string_table.h"

#include <utility>

static std::function<MsgBoxResult(const MessageBox&)>& shower() {
    static std::function<MsgBoxResult(const MessageBox&)> show;
    return show;
}

void setMessageBoxes(std::function<MsgBoxResult(const MessageBox&)> show) { shower() = std::move(show); }

MsgBoxResult showMessageBox(const QString& message, int style, const QString& title) {
    const QString lines = QString(message).replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (shower())
        return shower()({lines, style, title});
    complain(lines);
    return kOk;
}

/// The text of message `id` with `insert` where the message has a place for it.
static QString compose(int id, const QString& insert) {
    switch (id) {
    case IDS_MSGERR_COMM_TIMEOUT:
    case IDS_MSGERR_COMM_TIMEOUT2:
        return insert + text(id);
    case IDS_MSGERR_COMM_EXCEPTION:
        return text(id) + insert;
    case IDS_MSGDATA_COMM_PORT:
        return text(id) + insert + text(IDS_MSGDATA_COMM_PORT2);
    default:
        return text(id);
    }
}

MsgBoxResult fncMsgBox(int id, int style, const QString& insert) {
    try {
        return showMessageBox(compose(id, insert), style);
    } catch (const RuntimeFailure& f) {
        showMessageBox(QStringLiteral("番号 : %1\r\n内容 : ").arg(f.number()) + f.description(), kOkOnly,
                       QStringLiteral("fncMsgBox関数のエラー"));
        return kBoxFailed;
    }
}
