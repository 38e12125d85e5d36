#include "app/type_tables.h"

#include "app/ini_file.h"
#include "app/numbers.h"
#include "system/program_folder.h"
#include "system/runtime_failure.h"
#include "text/characters.h"
#include "text/string_table.h"

#include <QStringList>

QString typeTableFile() { return programFile(QStringLiteral("TYPE.INI")); }

/// Takes the range whose base number is item `baseIndex` of the split entry and whose name follows it.
/// @return whether `number` is in it
static bool takeRange(int baseIndex, std::int32_t number, QString& name, std::int32_t& offset) {
    constexpr std::int32_t kLastOffset = 9999;
    if (gListItems.size() <= baseIndex + 1)
        throw RuntimeFailure(failure::kSubscript, textByOffset({u"%1, section AMP_TYPE: an entry has no type name",
                                                                u"%1 セクション AMP_TYPE: 型名のない項目があります"})
                                                      .arg(typeTableFile()));
    const std::int32_t difference = toInt32(number - leadingNumber(gListItems[baseIndex]));
    if (difference < 0 || difference > kLastOffset)
        return false;
    offset = difference;
    name = gListItems[baseIndex + 1];
    return true;
}

bool fncGetAmpType(const QString& kindKey, std::int32_t number, QString& name, std::int32_t& offset) {
    constexpr int kFirstBase = 0;
    constexpr int kSecondBase = 3;
    QString entry = fncGetIniString(QStringLiteral("AMP_TYPE"), kindKey, typeTableFile());
    if (entry.isEmpty())
        return false;
    const int items = fncSplitList(entry);
    if (takeRange(kFirstBase, number, name, offset))
        return true;
    if (items > kSecondBase + 1 && takeRange(kSecondBase, number, name, offset))
        return true;
    offset = 0;
    name.clear();
    return false;
}

QString fncGetIfuDefine(const QString& key, const QString& section) {
    QString entry = fncGetIniString(section, trimBlanks(key), typeTableFile());
    if (entry.isEmpty())
        return {};
    fncSplitList(entry);
    return fncGetIniString(QStringLiteral("IFU_DEFINE"), gListItems.constFirst(), typeTableFile());
}
