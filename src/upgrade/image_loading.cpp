/// Image loading of the main window.
#include "upgrade/image_loading.h"

#include "app/ini_file.h"
#include "app/numbers.h"
#include "app/type_tables.h"
#include "text/blanks.h"
#include "text/error_report.h"
#include "text/runtime_failure.h"
#include "text/string_table.h"
#include "transfer/image_file.h"
#include "upgrade/file_dialog.h"
#include "upgrade/image_info.h"
#include "upgrade/main_window.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLabel>
#include <QPushButton>

bool gFileLoaded = false;
QString gLoadFileName;
QString gFileTypeName;
QString gFileVersion;

static qint64 fileLength(const QString& path) {
    const QFileInfo file(path);
    if (!file.exists())
        throw RuntimeFailure(failure::kFileAccess,
                             messageText(u"%1: there is no such file", u"%1: ファイルが見つかりません").arg(path));
    return file.size();
}

void frmMain::cmdLoading_Click() {
    if (TransferRun::isRunning())
        return;
    runTrapped([this] {
        const QString chosen = chooseFile(*this, QFileDialog::AcceptOpen, gLoadFileName);
        if (chosen.isEmpty())
            return;
        gLoadFileName = chosen;
        if (fileLength(chosen) == kImageSize)
            loadChosenImage();
    });
    enableWindow();
    cmdUpgrade->setEnabled(gFileLoaded);
    setDefaultCursor();
}

void frmMain::loadChosenImage() {
    disableWindow();
    gFileVersion.clear();
    gFileTypeName.clear();
    lblTitle[kImageRow]->clear();
    lblVersion[kImageRow]->clear();
    QCoreApplication::processEvents();
    gImageBuf.fill('\0', kImageSize + 1);
    gFileLoaded = fncBinaryFile(gLoadFileName, gImageBuf, kReadFile) == kImageSize;
    if (gFileLoaded)
        subTakeImageInfo();
    subSetAllVersion();
}

void subTakeImageInfo() {
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
