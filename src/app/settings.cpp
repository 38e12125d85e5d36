#include "app/settings.h"

#include "app/identification.h"
#include "app/ini_file.h"
#include "app/language_dialog.h"
#include "app/numbers.h"
#include "link/device_commands.h"
#include "system/program_folder.h"
#include "text/error_report.h"
#include "text/string_table.h"

#include <QLocale>

std::int16_t gComPort = 0;
QString gBaudRate;

static constexpr int kJapanese = 0;
static constexpr int kEnglish = 1;

static void readLanguage(const QString& file) {
    const QString language = fncGetIniString(QStringLiteral("OPERATION"), QStringLiteral("Language"), file);
    if (language.isEmpty()) {
        gLanguage = QLocale::system().language() == QLocale::Japanese ? kJapanese : kEnglish;
        frmLanguage().exec();
    } else {
        gLanguage = language == QLatin1String("JAPANESE") ? kJapanese : kEnglish;
    }
}

static void readPort(const QString& file) {
    const QString port = fncGetIniString(QStringLiteral("IFU"), QStringLiteral("COM"), file);
    gComPort = 1;
    if (const std::optional<double> number = wholeNumber(port))
        gComPort = toInt16(*number);
}

bool fncReadSetting() {
    return runTrapped([] {
        gUnitNo = kSensorAmplifier;
        const QString file = programFile(QStringLiteral("Setting.INI"));
        gBaudRate = QStringLiteral("38400");
        readLanguage(file);
        readPort(file);
        gAmpVersion.clear();
        gIfuVersion.clear();
    });
}
