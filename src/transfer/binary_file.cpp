#include "transfer/binary_file.h"

#include "text/blanks.h"
#include "text/error_report.h"
#include "text/runtime_failure.h"
#include "text/string_table.h"

#include <QFile>

static void readInto(QByteArray& array, qsizetype count, const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw RuntimeFailure(failure::kFileAccess, QStringLiteral("%1: %2").arg(path, file.errorString()));
    const qint64 taken = file.read(array.data(), count);
    if (taken < 0)
        throw RuntimeFailure(failure::kFileAccess, QStringLiteral("%1: %2").arg(path, file.errorString()));
    if (taken < count)
        throw RuntimeFailure(failure::kFileAccess, literalText(u"%1: the file ends after %2 of %3 bytes",
                                                               u"%1: ファイルが %2/%3 バイトで終わっています")
                                                       .arg(path)
                                                       .arg(taken)
                                                       .arg(count));
}

int fncBinaryFile(const QString& fileName, QByteArray& array) {
    const qsizetype count = array.size() - 1;
    return runTrapped([&] { readInto(array, count, trimBlanks(fileName)); }) ? static_cast<int>(count) : 0;
}
