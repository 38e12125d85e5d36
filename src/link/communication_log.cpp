#include "link/communication_log.h"

#include "system/program_folder.h"
#include "text/runtime_failure.h"
#include "text/string_table.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

void subWriteCommLog(const QString& line) {
    QFile log(programFile(QStringLiteral("PelkLog.txt")));
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("yyyy/MM/dd HH:mm:ss"));
    // A pipe would be waited for until somebody reads it.
    if (const QFileInfo info(log.fileName()); info.exists() && !info.isFile())
        throw RuntimeFailure(failure::kFileAccess,
                             messageText(u"%1: this is no file", u"%1: ファイルではありません").arg(log.fileName()));
    const QByteArray record = QStringLiteral("%1 %2\r\n").arg(time, line).toUtf8();
    if (!log.open(QIODevice::Append) || log.write(record) != record.size() || !log.flush())
        throw RuntimeFailure(failure::kFileAccess, QStringLiteral("%1: %2").arg(log.fileName(), log.errorString()));
}
