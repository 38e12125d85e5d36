#include "app/ini_file.h"

#include "system/cp932.h"
#include "system/regular_file.h"
#include "system/runtime_failure.h"
#include "text/characters.h"
#include "text/error_report.h"
#include "text/string_table.h"

#include <QFileInfo>
#include <QStringDecoder>
#include <QStringList>

#include <new>

// The text is decoded before it reaches the library.
#define SI_NO_CONVERSION
#include <SimpleIni.h>

QStringList gListItems;

QString iniText(const QByteArray& bytes) {
    // The decoder does not count an incomplete character at the end as an error.
    return bytes.isValidUtf8() ? QStringDecoder(QStringDecoder::Utf8).decode(bytes) : fromCp932(bytes);
}

QString iniValue(const QString& stored) {
    constexpr qsizetype kMaxCharacters = 126;
    QString value = stored.left(kMaxCharacters);
    value.truncate(value.indexOf(QLatin1Char('\'')) < 0 ? value.size() : value.indexOf(QLatin1Char('\'')));
    return trimBlanks(value.replace(QLatin1Char('\t'), QLatin1Char(' ')));
}

/// All of the file at `path`; nothing when it does not exist.
static QByteArray readFile(const QString& path) {
    const auto fail = [&path](const QString& reason) {
        throw RuntimeFailure(failure::kFileAccess, QStringLiteral("%1: %2").arg(path, reason));
    };
    RegularFile file(path);
    if (!file.exists())
        return {};
    // A pipe could block, and a device may never end.
    if (!QFileInfo(file).isFile())
        fail(textByOffset({u"not a regular file", u"ファイルではありません"}));
    if (!file.open(QIODevice::ReadOnly))
        fail(file.errorString());
    const QByteArray bytes = file.read(kMaxIniBytes + 1);
    if (file.error() != QFileDevice::NoError)
        fail(file.errorString());
    if (bytes.size() > kMaxIniBytes)
        fail(textByOffset({u"the file has more than %1 bytes", u"ファイルが%1バイトを超えています"}).arg(kMaxIniBytes));
    return bytes;
}

QString storedValue(const QByteArray& bytes, const QString& section, const QString& key) {
    // Keep all values of a key: the first one counts, not the last.
    CSimpleIniA ini(/*isUtf8*/ true, /*isMultiKey*/ true);
    if (ini.LoadData(iniText(bytes).toStdString()) < 0)
        throw std::bad_alloc();
    CSimpleIniA::TNamesDepend values;
    ini.GetAllValues(section.toUtf8().constData(), key.toUtf8().constData(), values);
    values.sort(CSimpleIniA::Entry::LoadOrder());
    return values.empty() ? QString() : QString::fromUtf8(values.front().pItem);
}

QString fncGetIniString(const QString& section, const QString& key, const QString& file) {
    QString value;
    runTrapped([&] { value = iniValue(storedValue(readFile(file), section, key)); });
    return value;
}

int fncSplitList(QString& list) {
    list.replace(QLatin1Char('\t'), QLatin1Char(' '));
    gListItems = list.split(QLatin1Char(',')).mid(0, kMaxListItems);
    for (QString& item : gListItems)
        item = trimBlanks(item);
    return static_cast<int>(gListItems.size());
}
