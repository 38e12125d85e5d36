#include "upgrade/progress_dialog.h"

#include "text/form_texts.h"
#include "text/string_table.h"
#include "transfer/transfer_steps.h"
#include "upgrade/fitted_label.h"
#include "upgrade/form_layout.h"

#include <QCloseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QWindow>

#include <chrono>

static constexpr int kDialogWidth = 5'220;
static constexpr int kDialogHeight = 1'755;

static constexpr ControlPlace kDialogPlaces[] = {
    {"lblMsg", 360, 240, 4'575, 255},
    {"prbComm", 240, 720, 4'695, 495},
    {"cmdCancel", 3'720, 1'320, 1'095, 315},
};

frmWait::frmWait(QWidget& owner)
    : QDialog(nullptr, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      cmdCancel(addControl<QPushButton>(*this, QStringLiteral("cmdCancel"))),
      owner_(owner),
      lblMsg(addControl<FittedLabel>(*this, QStringLiteral("lblMsg"))),
      prbComm(addControl<QProgressBar>(*this, QStringLiteral("prbComm"))) {
    setObjectName(QStringLiteral("frmWait"));
    setFixedSize(kDialogWidth / kTwipsPerPixel, kDialogHeight / kTwipsPerPixel);
    placeControls(*this, kDialogPlaces);
    cmdCancel->hide();
    // Enter must not cancel by accident what takes minutes.
    cmdCancel->setAutoDefault(false);
    prbComm->setAlignment(Qt::AlignCenter);
    // Often enough for the eye; each painting costs time that the transfer could use.
    refresh_.setInterval(std::chrono::milliseconds(500));
    refresh_.callOnTimeout([this] { refresh(); });
    connect(cmdCancel, &QPushButton::clicked, this, [this] { cmdCancel_Click(); });
    subApplyLanguage(objectName());
    setMessage(lblMsg->text());
}

void frmWait::setMessage(const QString& message) {
    lblMsg->setText(message);
    // Not by way of a buddy, which takes "&" for the mark of a key.
    prbComm->setAccessibleName(message);
}

void frmWait::cmdCancel_Click() {
    TransferSteps::cancelRead();
    hide();
}

void frmWait::start(int bytes) {
    prbComm->setRange(0, bytes);
    sinceFirst_.invalidate();
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
    prbComm->setFormat(timeLeft());
    prbComm->setValue(bytes_);
}

/// Share done, and the time that the rest takes at the rate so far.
QString frmWait::timeLeft() const {
    constexpr qint64 kLeastMeasured = 1'000;
    if (!sinceFirst_.isValid() || sinceFirst_.elapsed() < kLeastMeasured || bytes_ == first_)
        return QStringLiteral("%p%");
    const qint64 milliseconds = sinceFirst_.elapsed() * (prbComm->maximum() - bytes_) / (bytes_ - first_);
    const qint64 seconds = (milliseconds + 999) / 1'000;
    return literalText(u"%p%  (%1:%2 left)", u"%p%（残り %1:%2）")
        .arg(seconds / 60)
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

void frmWait::closeEvent(QCloseEvent* event) { event->ignore(); }
