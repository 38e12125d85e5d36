#include "app/startup_form.h"

#include "app/identification.h"
#include "app/settings.h"
#include "link/com_port.h"
#include "link/device_commands.h"
#include "link/frame_link.h"
#include "link/protocol_words.h"
#include "system/event_wait.h"
#include "system/program_end.h"
#include "system/runtime_failure.h"
#include "system/single_instance.h"
#include "text/error_report.h"
#include "text/message_box.h"
#include "text/string_table.h"
#include "widgets/centring.h"
#include "widgets/form_texts.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QVBoxLayout>
#include <QWindow>

static const QString kLineSettings = QStringLiteral(",n,8,1");

static constexpr ControlText kStartUpTexts[] = {
    {"lblBPS", IDS_FRMSTARTUP_LBL_BPS, true},
    {"lblCom", IDS_FRMSTARTUP_LBL_PORT, true},
    {"cmdEnd", IDS_FRMSTARTUP_CMD_END, true},
    {"cmdTest", IDS_FRMSTARTUP_CMD_TEST, true},
};

/// The logo, scaled down for the resolution of `window`'s screen.
static QPixmap logo(const QWidget& window) {
    constexpr int kStoredSize = 3;
    const QPixmap stored(QStringLiteral(":/bitmap/1101"));
    const qreal ratio = window.devicePixelRatioF();
    QPixmap shown = stored.scaledToWidth(qRound(stored.width() * ratio / kStoredSize), Qt::SmoothTransformation);
    shown.setDevicePixelRatio(ratio);
    return shown;
}

frmStartUp::frmStartUp(MainWindowAtStart& mainWindow)
    : mainWindow_(mainWindow),
      imgLogo(addControl<QLabel>(*this, QStringLiteral("imgLogo"))),
      lblBPS(addControl<QLabel>(*this, QStringLiteral("lblBPS"))),
      cmbBps(addControl<QComboBox>(*this, QStringLiteral("cmbBps"))),
      lblCom(addControl<QLabel>(*this, QStringLiteral("lblCom"))),
      cmbCom(addControl<QComboBox>(*this, QStringLiteral("cmbCom"))),
      cmdTest(addControl<QPushButton>(*this, QStringLiteral("cmdTest"))),
      cmdEnd(addControl<QPushButton>(*this, QStringLiteral("cmdEnd"))),
      shpComm(addControl<QFrame>(*this, QStringLiteral("shpComm"))) {
    setObjectName(QStringLiteral("frmStartUp"));
    setWindowTitle(QStringLiteral("Dravolt"));
    setWindowFlag(Qt::WindowMaximizeButtonHint, false);
    imgLogo->setAccessibleName(windowTitle());
    lblCom->setBuddy(cmbCom);
    lblBPS->setBuddy(cmbBps);

    auto* portControls = new QGridLayout(shpComm);
    qobject_cast<QFrame*>(shpComm)->setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    portControls->addWidget(lblCom, 0, 0);
    portControls->addWidget(cmbCom, 0, 1);
    portControls->addWidget(lblBPS, 1, 0);
    portControls->addWidget(cmbBps, 1, 1);
    portControls->setColumnStretch(1, 1);
    portControls->addWidget(cmdTest, 0, 2);
    portControls->addWidget(cmdEnd, 0, 3);

    auto* content = new QVBoxLayout(this);
    content->addWidget(imgLogo, 0, Qt::AlignCenter);
    content->addWidget(shpComm);
    content->setSizeConstraint(QLayout::SetFixedSize);

    fillLists();
    for (QPushButton* button : {cmdTest, cmdEnd})
        button->setAutoDefault(true);
    connect(cmdTest, &QPushButton::clicked, this, [this] { cmdTest_Click(); });
    connect(cmdEnd, &QPushButton::clicked, this, [] { endProgram(); });
}

void frmStartUp::closeEvent(QCloseEvent*) { endProgram(); }

void frmStartUp::load() {
    if (!runTrapped([this] { startUp(); }))
        offerPortChoice();
}

void frmStartUp::startUp() {
    fncReadSetting();
    subApplyLanguage([this] {
        applyControlTexts(*this, kStartUpTexts);
        imgLogo->setPixmap(logo(*this));
    });
    mainWindow_.createHidden();
    if (!isOnlyInstance()) {
        fncMsgBox(IDS_MSGDATA_STARTUP_ALREADY, kCritical);
        endProgram();
    }
    setPortControlsVisible(false);
    centreOnScreen(*this);
    showPainted();
    selectConfiguredPort();
    fncPortOpen(gComPort, gBaudRate + kLineSettings);
    gblnCommBusy = false;
    QByteArray reply;
    judgeFirstTest(fncSendTextCommand(kReadAttributes, reply));
}

void frmStartUp::fillLists() {
    constexpr int kPorts = 16;
    cmbBps->addItem(QStringLiteral("38400 bps"));
    for (int port = 1; port <= kPorts; ++port)
        cmbCom->addItem(QStringLiteral("COM%1").arg(port));
    cmbBps->setCurrentIndex(0);
    cmbCom->setCurrentIndex(0);
}

void frmStartUp::setPortControlsVisible(bool visible) {
    for (QWidget* control : std::initializer_list<QWidget*>{lblCom, cmbCom, cmdTest, cmdEnd, shpComm})
        control->setVisible(visible);
    // There is only one speed.
    lblBPS->hide();
    cmbBps->hide();
}

/// Shows the form and serves window events until it is on the screen, since the test that follows serves none.
void frmStartUp::showPainted() {
    show();
    waitServingEvents(std::chrono::milliseconds(200), [this] { return windowHandle()->isExposed(); });
    QCoreApplication::processEvents();
}

void frmStartUp::selectConfiguredPort() {
    const int index = gComPort - 1;
    if (index < -1 || index >= cmbCom->count())
        throw RuntimeFailure(failure::kInvalidProperty,
                             textByOffset({u"Setting.INI: there is no port COM%1; choose one of COM1 to COM%2",
                                           u"Setting.INI: COM%1 はありません。COM1～COM%2 から選択して下さい"})
                                 .arg(gComPort)
                                 .arg(cmbCom->count()));
    cmbCom->setCurrentIndex(index);
}

void frmStartUp::judgeFirstTest(const QString& result) {
    if (result == kNormalEnd) {
        enterMainWindow();
    } else if (result == kNotAvailable) {
        endProgram();
    } else {
        showMessageBox(gNoPortText, kExclamation);
        offerPortChoice();
    }
}

void frmStartUp::offerPortChoice() {
    setPortControlsVisible(true);
    centreOnScreen(*this);
    show();
    cmbCom->setFocus();
}

void frmStartUp::enterMainWindow() {
    subGetUnitInfo();
    hide();
    mainWindow_.subSetAllVersion();
    mainWindow_.showWindow();
}

void frmStartUp::cmdTest_Click() {
    if (testing_)
        return;
    const QScopedValueRollback<bool> guard(testing_, true);
    runTrapped([this] { testChosenPort(); });
}

void frmStartUp::testChosenPort() {
    const QString speed = cmbBps->currentText().section(QLatin1Char(' '), 0, 0);
    const int port = cmbCom->currentIndex() + 1;
    subPortClose();
    if (!fncPortOpen(port, speed + kLineSettings))
        return;
    QByteArray reply;
    QString result = fncSendTextCommand(kReadAttributes, reply);
    if (result != kNormalEnd) {
        QCoreApplication::processEvents();
        result = fncSendTextCommand(kReadAttributes, reply);
    }
    if (result == kNormalEnd) {
        gComPort = static_cast<std::int16_t>(port);
        enterMainWindow();
    } else {
        fncMsgBox(IDS_MSGDATA_COMM_PORT, kExclamation, QString::number(port));
    }
}
