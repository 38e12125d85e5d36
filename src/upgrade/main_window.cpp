#include "upgrade/main_window.h"

#include "app/identification.h"
#include "link/device_commands.h"
#include "system/program_end.h"
#include "system/program_folder.h"
#include "system/runtime_failure.h"
#include "text/error_report.h"
#include "text/message_box.h"
#include "text/string_table.h"
#include "transfer/image_file.h"
#include "upgrade/file_dialog.h"
#include "upgrade/form_layout.h"
#include "upgrade/image_loading.h"
#include "version.h"
#include "widgets/centring.h"
#include "widgets/fonts.h"
#include "widgets/form_texts.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QFileInfo>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

constexpr int kClientWidth = 5'475;
constexpr int kClientHeight = 3'300;
constexpr int kServiceHeight = 3'720;
constexpr qreal kHeadingPoints = 11.25;
constexpr qreal kRowPoints = 9.75;

constexpr ControlPlace kPlaces[] = {
    {"lblPresent", 240, 120, 3'255, 300},        {"optPresent(0)", 360, 480, 300, 240},
    {"optPresent(1)", 360, 720, 300, 240},       {"lblTitle(0)", 720, 480, 1'335, 240},
    {"lblTitle(1)", 720, 720, 1'335, 240},       {"lblTitle(2)", 720, 1'560, 1'335, 240},
    {"lblVersion(0)", 2'040, 480, 1'455, 240},   {"lblVersion(1)", 2'040, 720, 1'455, 240},
    {"lblVersion(2)", 2'040, 1'560, 1'455, 240}, {"lblRewriting", 240, 1'200, 3'255, 300},
    {"chkVerify", 360, 2'040, 1'695, 315},       {"cmdLoading", 2'160, 2'040, 1'335, 315},
    {"cmdPresent", 0, 2'640, 75, 315},           {"cmdUpgrade", 600, 2'640, 1'335, 315},
    {"cmdEnd", 2'160, 2'640, 1'335, 315},        {"LabelWriteProtect", 3'480, 120, 1'935, 300},
    {"horizontalLine", 0, 2'520, 5'400, 30},     {"verticalLine", 3'720, 0, 30, 2'520},
};

/// Places for the service controls.
constexpr ControlPlace kServicePlaces[] = {
    {"lblService", 3'840, 120, 1'515, 300},
    {"cmdPresent", 600, 3'120, 2'895, 315},
};

constexpr ControlText kMainTexts[] = {
    {"lblPresent", IDS_FRMMAIN_LBL_PRESENT, true}, {"lblRewriting", IDS_FRMMAIN_LBL_REWRITEING, true},
    {"cmdLoading", IDS_FRMMAIN_CMD_LOADING, true}, {"cmdPresent", IDS_FRMMAIN_CMD_SAVE_PRESENT, true},
    {"cmdUpgrade", IDS_FRMMAIN_CMD_UPGRADE, true}, {"cmdEnd", IDS_FRMMAIN_CMD_END, true},
};

QLabel* addHeading(QWidget& form, const char* name) {
    auto* heading = addControl<FittedLabel>(form, QLatin1String(name));
    QFont font = heading->font();
    font.setPointSizeF(kHeadingPoints);
    font.setUnderline(true);
    heading->setFont(font);
    return heading;
}

FittedLabel* addRowLabel(QWidget& form, const char* name, std::size_t row) {
    auto* label = addControl<FittedLabel>(form, QStringLiteral("%1(%2)").arg(QLatin1String(name)).arg(row));
    QFont font = label->font();
    font.setPointSizeF(kRowPoints);
    label->setFont(font);
    return label;
}

void addLine(QWidget& form, const char* name, QFrame::Shape shape) {
    auto* line = addControl<QFrame>(form, QLatin1String(name));
    line->setFrameStyle(shape | QFrame::Sunken);
}

}  // namespace

frmMain::frmMain() : content_(new QWidget) {
    setObjectName(QStringLiteral("frmMain"));
    setWindowFlag(Qt::WindowMaximizeButtonHint, false);
    setFixedSize(kClientWidth / kTwipsPerPixel, kClientHeight / kTwipsPerPixel);
    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins({});
    whole->addWidget(content_);
    createControls();
    placeControls(*this, kPlaces);
    connectControls();
}

/// Creates the controls in tab order.
void frmMain::createControls() {
    addHeading(*content_, "lblPresent");
    addHeading(*content_, "lblRewriting");
    for (std::size_t i = 0; i < optPresent.size(); ++i)
        optPresent[i] = addControl<QRadioButton>(*content_, QStringLiteral("optPresent(%1)").arg(i));
    for (std::size_t row = 0; row < lblTitle.size(); ++row) {
        lblTitle[row] = addRowLabel(*content_, "lblTitle", row);
        lblVersion[row] = addRowLabel(*content_, "lblVersion", row);
    }
    chkVerify = addControl<QCheckBox>(*content_, QStringLiteral("chkVerify"));
    cmdLoading = addControl<QPushButton>(*content_, QStringLiteral("cmdLoading"));
    cmdPresent = addControl<QPushButton>(*content_, QStringLiteral("cmdPresent"));
    cmdUpgrade = addControl<QPushButton>(*content_, QStringLiteral("cmdUpgrade"));
    cmdEnd = addControl<QPushButton>(*content_, QStringLiteral("cmdEnd"));
    LabelWriteProtect = addControl<QLabel>(*content_, QStringLiteral("LabelWriteProtect"));
    LabelWriteProtect->setStyleSheet(QStringLiteral("background: yellow"));
    addLine(*content_, "horizontalLine", QFrame::HLine);
    addLine(*content_, "verticalLine", QFrame::VLine);
    chkVerify->hide();
    cmdPresent->hide();
    LabelWriteProtect->hide();
    optPresent[0]->setChecked(true);
}

void frmMain::connectControls() {
    for (std::size_t i = 0; i < optPresent.size(); ++i)
        connect(optPresent[i], &QRadioButton::toggled, this, [this, i](bool chosen) {
            if (chosen)
                optPresent_Click(static_cast<int>(i));
        });
    for (QPushButton* button : {cmdLoading, cmdPresent, cmdUpgrade, cmdEnd})
        button->setAutoDefault(true);
    connect(cmdLoading, &QPushButton::clicked, this, [this] { cmdLoading_Click(); });
    connect(cmdPresent, &QPushButton::clicked, this, [this] { cmdPresent_Click(); });
    connect(cmdUpgrade, &QPushButton::clicked, this, [this] { cmdUpgrade_Click(); });
    connect(cmdEnd, &QPushButton::clicked, this, [this] { Form_QueryUnload(); });
}

void frmMain::showServiceControls() {
    lblService = addControl<FittedLabel>(*content_, QStringLiteral("lblService"));
    setFixedSize(width(), kServiceHeight / kTwipsPerPixel);
    placeControls(*this, kServicePlaces);
    chkVerify->show();
    cmdPresent->show();
    setTabOrder(cmdEnd, cmdPresent);
}

void frmMain::createHidden() {
    optPresent_Click(0);
    subSetWindowTexts();
    setCatalogueFont(*chkVerify);
    gFileLoaded = false;
    cmdUpgrade->setEnabled(gFileLoaded);
    if (!QFileInfo(programFile(QStringLiteral("TYPE.INI"))).isFile()) {
        showMessageBox(text(IDS_MSGERR_INIFILE_NOTEXIST), kCritical);
        endProgram();
    }
    subSetAllVersion();
}

void frmMain::subSetWindowTexts() {
    chkVerify->setText(textByLanguage({u"Verification", u"ベリファイ実行"}));
    optPresent[0]->setAccessibleName(textByLanguage({u"Target: sensor amplifier", u"対象: センサアンプ"}));
    optPresent[1]->setAccessibleName(textByLanguage({u"Target: interface unit", u"対象: インターフェースユニット"}));
    subApplyLanguage([this] {
        setWindowTitle(text(IDS_FRMMAIN_CAPTION));
        applyControlTexts(*this, kMainTexts);
    });
    // Otherwise the rows would be in the system font, next to headings in the catalogue's.
    for (QLabel* label : lblTitle)
        setCatalogueFont(*label);
    for (QLabel* label : lblVersion)
        setCatalogueFont(*label);
    if (lblService != nullptr) {
        lblService->setText(textByLanguage({u"for service", u"サービス用"}));
        setCatalogueFont(*lblService);
    }
}

void frmMain::showWindow() {
    centreOnScreen(*this);
    show();
    raise();
    activateWindow();
    cmdLoading->setFocus();
}

void frmMain::closeEvent(QCloseEvent*) { Form_QueryUnload(); }

void frmMain::Form_QueryUnload() { endProgram(); }

void frmMain::disableWindow() {
    focusBefore_ = focusWidget();
    content_->setEnabled(false);
    setCursor(Qt::WaitCursor);
    // What follows may not serve window events for seconds.
    repaint();
}

void frmMain::enableWindow() {
    content_->setEnabled(true);
    if (focusBefore_)
        focusBefore_->setFocus();
    focusBefore_.clear();
}

void frmMain::setDefaultCursor() { unsetCursor(); }

frmWait& frmMain::progressDialog() {
    if (!frmWait_)
        frmWait_ = std::make_unique<frmWait>(*this, lblTitle[kImageRow]->text(), lblVersion[kImageRow]->text(),
                                             [this] { run_.cancel(); });
    return *frmWait_;
}

void frmMain::showProgress() {
    progressDialog().start(kImageSize);
    // The write, which cannot be cancelled, has disabled the button.
    progressDialog().cmdCancel->setVisible(lblService != nullptr && progressDialog().cmdCancel->isEnabled());
}

void frmMain::setProgress(int bytes) { progressDialog().setBytes(bytes); }

void frmMain::announceVerification() {
    frmWait_.reset();
    progressDialog().setMessage(textByLanguage({u"Verification...", u"ベリファイ中..."}));
}

void frmMain::releaseWindow() {
    frmWait_.reset();
    enableWindow();
}

void frmMain::raiseWindow() { raise(); }

// ---- rows and target ----

static QString programVersionText(int major, int minor) {
    return QStringLiteral("ver%1.%2").arg(major).arg(minor, 3, 10, QLatin1Char('0'));
}

void frmMain::subSetAllVersion() {
    runTrapped([this] {
        setWindowTitle(QStringLiteral("Dravolt ") + programVersionText(kProgramMajor, kProgramMinor));
        const std::array<QString, 3> names{gAmpTypeName, gIfuTypeName, gFileTypeName};
        const std::array<QString, 3> versions{gAmpVersion, gIfuVersion, gFileVersion};
        for (std::size_t row = 0; row < lblTitle.size(); ++row) {
            lblTitle[row]->setText(names[row]);
            lblVersion[row]->setText(names[row].isEmpty() ? QString() : versions[row]);
        }
    });
}

/// The target unit and the image are shown normally, the other unit in grey.
void frmMain::optPresent_Click(int index) {
    runTrapped([this, index] {
        gUnitNo = index == 1 ? kInterfaceUnit : kSensorAmplifier;
        for (int row = 0; row <= kImageRow; ++row) {
            const bool grey = row != index && row != kImageRow;
            lblTitle[static_cast<std::size_t>(row)]->setGrey(grey);
            lblVersion[static_cast<std::size_t>(row)]->setGrey(grey);
        }
    });
}

TransferJob frmMain::chosenJob() const {
    return {.unit = optPresent[0]->isChecked() ? kSensorAmplifier : kInterfaceUnit,
            .verificationTicked = chkVerify->isChecked()};
}

void frmMain::showWrittenVersion(int unit) {
    const QString written = lblVersion[kImageRow]->text();
    lblVersion[rowOf(unit)]->setText(written);
    // Keep it as the unit's version, or the next refresh of the rows would bring the old one back.
    (unit == kSensorAmplifier ? gAmpVersion : gIfuVersion) = written;
}

// ---- image loading ----

static qint64 fileLength(const QString& path) {
    const QFileInfo file(path);
    if (!file.exists())
        throw RuntimeFailure(failure::kFileAccess,
                             textByOffset({u"%1: there is no such file", u"%1: ファイルが見つかりません"}).arg(path));
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
        takeImageInfo();
    subSetAllVersion();
}

// ---- upgrade ----

void frmMain::cmdUpgrade_Click() {
    if (TransferRun::isRunning())
        return;
    if (!runTrapped([this] { startUpgrade(); })) {
        enableWindow();
        setDefaultCursor();
    }
}

void frmMain::startUpgrade() {
    const TransferJob job = chosenJob();
    if (lblTitle[rowOf(job.unit)]->text() != lblTitle[kImageRow]->text()) {
        fncMsgBox(IDS_MSGERR_NOTADAPTED, kOkOnly);
        return;
    }
    disableWindow();
    const bool goOn = confirmCommunication();
    const bool dryRun = !LabelWriteProtect->isHidden();
    if (goOn && dryRun)
        showMessageBox(QStringLiteral("形式認識テストです　書込み処理はスキップします。"), kOkOnly);
    if (!goOn || dryRun) {
        enableWindow();
        setDefaultCursor();
        return;
    }
    progressDialog().cmdCancel->setEnabled(false);
    run_.write(job);
}

/// Whether the sensor amplifier answers normally, or the operator chooses to go on.
bool frmMain::confirmCommunication() {
    return fncCheckSensorComm() == 0 || fncMsgBox(IDS_MSGERR_NOTCHECK_CONFIRM, kOkCancel) == kOk;
}

// ---- save ----

static QString gSaveFileName;

void frmMain::cmdPresent_Click() {
    if (TransferRun::isRunning())
        return;
    if (!runTrapped([this] { startSave(); })) {
        enableWindow();
        setDefaultCursor();
    }
}

void frmMain::startSave() {
    const QString chosen = chooseFile(*this, QFileDialog::AcceptSave, gSaveFileName);
    if (chosen.isEmpty())
        return;
    gSaveFileName = chosen;
    disableWindow();
    TransferJob job = chosenJob();
    job.file = chosen;
    run_.read(job);
}
