#include "widgets/form_texts.h"

#include "system/runtime_failure.h"
#include "text/error_report.h"
#include "widgets/fonts.h"

#include <QCoreApplication>
#include <QGroupBox>
#include <QTranslator>
#include <QVariant>

QString gFontName;
QString gFilterText;
QString gNoPortText;

static void setCaption(QWidget& target, const QString& caption) {
    if (auto* frame = qobject_cast<QGroupBox*>(&target))
        frame->setTitle(caption);
    else
        target.setProperty("text", caption);
}

void applyControlTexts(const QWidget& form, std::span<const ControlText> texts) {
    for (const ControlText& entry : texts) {
        auto* target = form.findChild<QWidget*>(QLatin1String(entry.control));
        if (target == nullptr)
            throw RuntimeFailure(
                failure::kInvalidProperty,
                QStringLiteral("No control %1 on %2").arg(QLatin1String(entry.control), form.objectName()));
        setCaption(*target, text(entry.id));
        if (entry.catalogueFont)
            setCatalogueFont(*target);
    }
}

static void subLoadMessageTexts() {
    gFontName = text(IDS_FONTNAME);
    gFilterText = text(IDS_FILTER_BINFILE);
    gNoPortText = text(IDS_MSGERR_COMM_NO_PORT);
}

/// Sets the language of Qt's own texts, such as those of its file dialog, to that of the offset.
static void translateQt() {
    static QTranslator japanese;
    static const bool loaded = japanese.load(QStringLiteral(":/translations/qtbase_ja.qm"));
    if (!loaded)
        throw RuntimeFailure(failure::kNoSuchText, QStringLiteral("Qt's Japanese texts are missing"));
    if (gLangOffset == 0)
        QCoreApplication::installTranslator(&japanese);
    else
        QCoreApplication::removeTranslator(&japanese);
}

void subApplyLanguage(const std::function<void()>& setTexts) {
    gLangOffset = gLanguage != 0 ? 10000 : 0;
    runTrapped([&setTexts] {
        translateQt();
        subLoadMessageTexts();
        setTexts();
    });
}
