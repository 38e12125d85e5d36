#include "widgets/fonts.h"

#include "system/program_folder.h"
#include "widgets/form_texts.h"

#include <QApplication>
#include <QFontDatabase>
#include <QWidget>

#include <algorithm>

/// Without one of these the system picks any font that has the characters, even a Chinese or a mincho one.
static const QStringList kGothicFonts{
    QStringLiteral("IPAPGothic"),    QStringLiteral("IPAexGothic"),     QStringLiteral("Noto Sans CJK JP"),
    QStringLiteral("Noto Sans JP"),  QStringLiteral("VL PGothic"),      QStringLiteral("TakaoPGothic"),
    QStringLiteral("BIZ UDPGothic"), QStringLiteral("Source Han Sans"), QStringLiteral("IPAGothic"),
    QStringLiteral("Yu Gothic UI"),  QStringLiteral("Meiryo UI"),       QStringLiteral("MS PGothic"),
};

/// `family`, with the gothic fonts as fallback.
static QStringList families(const QString& family) {
    // Metric-compatible with the catalogue's English font, which few systems have.
    return QStringList{family, QStringLiteral("Liberation Sans")} + kGothicFonts;
}

void useGothicFonts() {
    if (std::none_of(kGothicFonts.begin(), kGothicFonts.end(),
                     [](const QString& f) { return QFontDatabase::hasFamily(f); }))
        QFontDatabase::addApplicationFont(programFile(QStringLiteral("fonts/ipagp.ttf")));
    QFont font = QApplication::font();
    font.setFamilies(families(font.family()));
    QApplication::setFont(font);
}

void setCatalogueFont(QWidget& control) {
    QFont font = control.font();
    font.setFamilies(families(gFontName));
    control.setFont(font);
}
