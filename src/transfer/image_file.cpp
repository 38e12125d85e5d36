#include "transfer/image_file.h"

#include "system/runtime_failure.h"
#include "text/characters.h"
#include "text/error_report.h"
#include "text/string_table.h"

#include <QFile>
#include <QSaveFile>

QByteArray gImageBuf(kImageSize + 1, '\0');
QByteArray gReadBuf(kImageSize + 1, '\0');

int fncCompareImage() { return gReadBuf == gImageBuf ? 0 : 1; }

[[noreturn]] static void fail(const QFileDevice& file) {
    throw RuntimeFailure(failure::kFileAccess, QStringLiteral("%1: %2").arg(file.fileName(), file.errorString()));
}

static void readInto(QByteArray& array, qsizetype count, const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        fail(file);
    const qint64 taken = file.read(array.data(), count);
    if (taken < 0)
        fail(file);
    if (taken < count)
        throw RuntimeFailure(failure::kFileAccess, textByOffset({u"%1: the file ends after %2 of %3 bytes",
                                                                 u"%1: ファイルが %2/%3 バイトで終わっています"})
                                                       .arg(path, QString::number(taken), QString::number(count)));
}

static void writeFrom(const QByteArray& array, qsizetype count, const QString& path) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        fail(file);
    for (qint64 at = 0; at < count;) {
        // A disk that fills up takes a part first; only the next write fails with the reason.
        const qint64 taken = file.write(array.constData() + at, count - at);
        if (taken <= 0)
            fail(file);
        at += taken;
    }
    if (!file.commit())
        fail(file);
}

int fncBinaryFile(const QString& fileName, QByteArray& array, BinaryFileMode mode) {
    const qsizetype count = array.size() - 1;
    const bool done = runTrapped([&] {
        if (mode == kWriteFile)
            writeFrom(array, count, trimBlanks(fileName));
        else
            readInto(array, count, trimBlanks(fileName));
    });
    return done ? static_cast<int>(count) : 0;
}
