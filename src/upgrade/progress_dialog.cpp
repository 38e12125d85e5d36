#include "upgrade/progress_dialog.h"

#include "link/waits.h"
#include "text/characters.h"
#include "text/string_table.h"
#include "upgrade/fitted_label.h"
#include "upgrade/form_layout.h"
#include "widgets/fonts.h"
#include "widgets/form_texts.h"

#include <QCloseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QWindow>

static constexpr int kDialogWidth = 5'220;
static constexpr int kDialogHeight = 1'755;

static constexpr ControlPlace kDialogPlaces[] = {
    {"lblMsg", 360, 240, 4'575, 255},
    {"prbComm", 240, 720, 4'695, 495},
    {"cmdCancel", 3'720, 1'320, 1'095, 315},
};

static constexpr ControlText kWaitTexts[] = {{"cmdCancel", IDS_FRMWAIT_CMD_CANCEL, true}};

/// The message that names the loaded image, whatever the dialog is used for.
static QString progressMessage(const QString& imageName, const QString& imageVersion) {
    const QString before = textByLanguage({u" is under updating to ver", u" のソフトウェアを ver"});
    const QString after = textByLanguage({u".", u" にアップデート中です。"});
    return trimBlanks(imageName + before + imageVersion + after);
}

frmWait::frmWait(QWidget& owner, const QString& imageName, const QString& imageVersion, std::function<void()> cancel)
    : QDialog(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      cmdCancel(addControl<QPushButton>(*this, QStringLiteral("cmdCancel"))),
      owner_(owner),
      cancel_(std::move(cancel)),
      lblMsg(addControl<FittedLabel>(*this, QStringLiteral("lblMsg"))),
      prbComm(addControl<QProgressBar>(*this, QStringLiteral("prbComm"))) {
    setObjectName(QStringLiteral("frmWait"));
    setFixedSize(kDialogWidth / kTwipsPerPixel, kDialogHeight / kTwipsPerPixel);
    placeControls(*this, kDialogPlaces);
    cmdCancel->hide();
    // Enter must not accidentally cancel a transfer of minutes.
    cmdCancel->setAutoDefault(false);
    prbComm->setAlignment(Qt::AlignCenter);
    refresh_.setInterval(gWaits.progressPainting);
    refresh_.callOnTimeout([this] { refresh(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
    subApplyLanguage([&] {
        setWindowTitle(text(IDS_FRMWAIT_CAPTION));
        setMessage(progressMessage(imageName, imageVersion));
        setCatalogueFont(*lblMsg);
        applyControlTexts(*this, kWaitTexts);
    });
}

void frmWait::setMessage(const QString& message) {
    lblMsg->setText(message);
    // Not with a buddy label, where "&" would mark a shortcut.
    prbComm->setAccessibleName(message);
}

void frmWait::cmdCancel_Click() {
    cancel_();
    hide();
}

void frmWait::start(int bytes) {
    prbComm->setRange(0, bytes);
    setBytes(0);
    refresh();
    refresh_.start();
    create();
    windowHandle()->setTransientParent(owner_.windowHandle());
    move(owner_.frameGeometry().center() - rect().center());
    show();
}

void frmWait::setBytes(int bytes) {
    bytes_ = bytes;
    if (bytes > 0 && !sinceFirst_.isValid()) {
        sinceFirst_.start();
        first_ = bytes;
    }
}

void frmWait::refresh() {
    const std::chrono::milliseconds elapsed(sinceFirst_.isValid() ? sinceFirst_.elapsed() : 0);
    prbComm->setFormat(progressText(elapsed, first_, bytes_, prbComm->maximum()));
    prbComm->setValue(bytes_);
}

QString progressText(std::chrono::milliseconds elapsed, int first, int bytes, int total) {
    if (elapsed < std::chrono::seconds(1) || bytes <= first)
        return QStringLiteral("%p%");
    const auto left = std::chrono::ceil<std::chrono::seconds>(elapsed * (total - bytes) / (bytes - first));
    return textByLanguage({u"%p%  (%1:%2 left)", u"%p%（残り %1:%2）"})
        .arg(left.count() / 60)
        .arg(left.count() % 60, 2, 10, QLatin1Char('0'));
}

void frmWait::closeEvent(QCloseEvent* event) { event->ignore(); }
