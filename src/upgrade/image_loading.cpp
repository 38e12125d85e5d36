#include "upgrade/image_loading.h"

#include "app/ini_file.h"
#include "app/numbers.h"
#include "app/type_tables.h"
#include "text/characters.h"
#include "upgrade/image_info.h"

bool gFileLoaded = false;
QString gLoadFileName;
QString gFileTypeName;
QString gFileVersion;

void takeImageInfo() {
    const QString versionWord = fncGetImageInfo(kImageVersionWord);
    QString typeKey = trimBlanks(fncGetImageInfo(kImageTypeKey).replace(QChar::Null, QLatin1Char(' ')));
    if (typeKey.isEmpty())
        typeKey = QStringLiteral("NULL");
    gFileTypeName = fncGetIfuDefine(typeKey, QStringLiteral("IFU_BIN_TYPE"));
    gFileVersion = versionText(versionWord.toInt());
    if (!gFileTypeName.isEmpty())
        return;
    const QString kindKey = fncGetIniString(QStringLiteral("AMP_BIN_TYPE"), typeKey, typeTableFile());
    if (kindKey.isEmpty())
        return;
    std::int32_t thousandths = 0;
    fncGetAmpType(kindKey, versionWord.toInt(), gFileTypeName, thousandths);
    gFileVersion = versionText(thousandths);
}
