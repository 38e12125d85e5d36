#include "text/form_texts.h"

#include "text/blanks.h"
#include "text/error_report.h"
#include "text/fonts.h"
#include "text/runtime_failure.h"
#include "text/string_table.h"

#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QPixmap>
#include <QTranslator>
#include <QVariant>

QString gFontName;
QString gFilterText;
QString gNoPortText;

namespace {

/// One control of a form, its text, and whether it takes the catalogue's font.
struct ControlText {
    const char* control;
    StringId id;
    bool catalogueFont;
};

constexpr ControlText kMainTexts[] = {
    {"lblPresent", IDS_FRMMAIN_LBL_PRESENT, true}, {"lblRewriting", IDS_FRMMAIN_LBL_REWRITEING, true},
    {"cmdLoading", IDS_FRMMAIN_CMD_LOADING, true}, {"cmdPresent", IDS_FRMMAIN_CMD_SAVE_PRESENT, true},
    {"cmdUpgrade", IDS_FRMMAIN_CMD_UPGRADE, true}, {"cmdEnd", IDS_FRMMAIN_CMD_END, true},
};

constexpr ControlText kStartUpTexts[] = {
    {"lblBPS", IDS_FRMSTARTUP_LBL_BPS, true},
    {"lblCom", IDS_FRMSTARTUP_LBL_PORT, true},
    {"cmdEnd", IDS_FRMSTARTUP_CMD_END, true},
    {"cmdTest", IDS_FRMSTARTUP_CMD_TEST, true},
};

constexpr ControlText kWaitTexts[] = {
    {"cmdCancel", IDS_FRMWAIT_CMD_CANCEL, true},
};

constexpr ControlText kLanguageTexts[] = {
    {"fraLanguage", IDS_FRMLANG_FRA_LANGUAGE, false},   {"optLanguage(0)", IDS_FRMLANG_OPT_JAPAN, false},
    {"optLanguage(1)", IDS_FRMLANG_OPT_ENGLISH, false}, {"cmdOK", IDS_FRMLANG_CMD_OK, false},
    {"cmdCancel", IDS_FRMLANG_CMD_CANCEL, false},
};

QWidget& form(const QString& name) {
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows)
        if (window->objectName() == name)
            return *window;
    throw RuntimeFailure(failure::kInvalidProperty, QStringLiteral("No form %1").arg(name));
}

template <typename Control = QWidget>
Control& control(const QWidget& form, const char* name) {
    if (auto* found = form.findChild<Control*>(QLatin1String(name)))
        return *found;
    throw RuntimeFailure(failure::kInvalidProperty,
                         QStringLiteral("No control %1 on %2").arg(QLatin1String(name), form.objectName()));
}

void setCaption(QWidget& target, const QString& caption) {
    if (auto* frame = qobject_cast<QGroupBox*>(&target))
        frame->setTitle(caption);
    else
        target.setProperty("text", caption);
}

template <std::size_t n>
void applyControlTexts(const QWidget& form, const ControlText (&texts)[n]) {
    for (const ControlText& entry : texts) {
        QWidget& target = control(form, entry.control);
        setCaption(target, text(entry.id));
        if (entry.catalogueFont)
            setCatalogueFont(target);
    }
}

void subLoadMessageTexts() { gNoPortText = text(IDS_MSGERR_COMM_NO_PORT); }

/// What the progress dialog says: the image of the main window's third row, whatever the dialog is used for.
QString progressMessage() {
    const QWidget& mainWindow = form(QStringLiteral("frmMain"));
    const QString name = control<QLabel>(mainWindow, "lblTitle(2)").text();
    const QString version = control<QLabel>(mainWindow, "lblVersion(2)").text();
    const QString before = literalText(u" is under updating to ver", u" のソフトウェアを ver");
    const QString after = literalText(u".", u" にアップデート中です。");
    return trimBlanks(name + before + version + after);
}

void subSetMainTexts(QWidget& frmMain) {
    gFontName = text(IDS_FONTNAME);
    gFilterText = text(IDS_FILTER_BINFILE);
    frmMain.setWindowTitle(text(IDS_FRMMAIN_CAPTION));
    applyControlTexts(frmMain, kMainTexts);
}

/// The logo, which is stored larger, sharp on the screen of `window`.
QPixmap logo(const QWidget& window) {
    constexpr int kStoredSize = 3;
    const QPixmap stored(QStringLiteral(":/bitmap/1101"));
    const qreal ratio = window.devicePixelRatioF();
    QPixmap shown = stored.scaledToWidth(qRound(stored.width() * ratio / kStoredSize), Qt::SmoothTransformation);
    shown.setDevicePixelRatio(ratio);
    return shown;
}

void subSetStartUpTexts(const QWidget& frmStartUp) {
    gFontName = text(IDS_FONTNAME);
    subLoadMessageTexts();
    applyControlTexts(frmStartUp, kStartUpTexts);
    control<QLabel>(frmStartUp, "imgLogo").setPixmap(logo(frmStartUp));
}

void subSetWaitTexts(QWidget& frmWait) {
    gFontName = text(IDS_FONTNAME);
    subLoadMessageTexts();
    frmWait.setWindowTitle(text(IDS_FRMWAIT_CAPTION));
    QWidget& lblMsg = control(frmWait, "lblMsg");
    setCaption(lblMsg, progressMessage());
    setCatalogueFont(lblMsg);
    applyControlTexts(frmWait, kWaitTexts);
}

void subSetLanguageTexts(QWidget& frmLanguage) {
    gFontName = text(IDS_FONTNAME);
    gFilterText = text(IDS_FILTER_BINFILE);
    frmLanguage.setWindowTitle(text(IDS_FRMLANG_CAPTION));
    applyControlTexts(frmLanguage, kLanguageTexts);
}

void applyFormTexts(const QString& formName) {
    if (formName == QLatin1String("frmMain"))
        subSetMainTexts(form(formName));
    else if (formName == QLatin1String("frmStartUp"))
        subSetStartUpTexts(form(formName));
    else if (formName == QLatin1String("frmWait"))
        subSetWaitTexts(form(formName));
    else if (formName == QLatin1String("frmLanguage"))
        subSetLanguageTexts(form(formName));
}

/// Lets Qt's own texts, such as those of its file dialog, speak the language of the offset.
void translateQt() {
    static QTranslator japanese;
    static const bool loaded = japanese.load(QStringLiteral(":/translations/qtbase_ja.qm"));
    if (!loaded)
        throw RuntimeFailure(failure::kNoSuchText, QStringLiteral("Qt's Japanese texts are missing"));
    if (gLangOffset == 0)
        QCoreApplication::installTranslator(&japanese);
    else
        QCoreApplication::removeTranslator(&japanese);
}

}  // namespace

void subApplyLanguage(const QString& formName) {
    gLangOffset = gLanguage != 0 ? 10000 : 0;
    runTrapped([&formName] {
        translateQt();
        applyFormTexts(formName);
    });
}
