#include "link/communication_log.h"

#include "system/program_folder.h"
#include "system/regular_file.h"
#include "system/runtime_failure.h"

#include <QDateTime>

void subWriteCommLog(const QString& line) {
    RegularFile log(programFile(QStringLiteral("PelkLog.txt")));
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("yyyy/MM/dd HH:mm:ss"));
    const QByteArray record = QStringLiteral("%1 %2\r\n").arg(time, line).toUtf8();
    if (!log.open(QIODevice::Append) || log.write(record) != record.size() || !log.flush())
        throw RuntimeFailure(failure::kFileAccess, QStringLiteral("%1: %2").arg(log.fileName(), log.errorString()));
}
