/// The real main window with simulated units on the wire, operated by clicks.
#pragma once

#include "app/identification.h"
#include "simulator/image.h"
#include "support/boxes.h"
#include "support/wire_rig.h"
#include "system/event_wait.h"
#include "system/program_end.h"
#include "transfer/image_file.h"
#include "upgrade/image_loading.h"
#include "upgrade/main_window.h"

#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QWindow>

#include <functional>

class MainWindowRig : public WireRig<BoxOperator> {
public:
    MainWindowRig() {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        writeFile("TYPE.INI", "[AMP_TYPE]\n0A=12000,AMP-A,x,22000,AMP-B\n"
                              "[AMP_BIN_TYPE]\nAMPKEY=0A\nｱﾝﾌﾟ=0A\nBOTH=0A\nNULL=0A\nA-KEY-OF-SIXTEEN=0A\n"
                              "[IFU_BIN_TYPE]\nIFUKEY=D\nBOTH=D\n"
                              "[IFU_DEFINE]\nD=IFU-D\n");
        gAmpTypeName = "AMP-A";
        gAmpVersion = "0.500";
        gIfuTypeName = "IFU-D";
        gIfuVersion = "1.004";
        writeImage("amp.bin", "AMPKEY", 13500);
        gFileTypeName = gFileVersion = gLoadFileName = QString();
        gWaits.tick = 1ms;
        gWaits.verificationPause = 20ms;
        window.createHidden();
        window.showWindow();
    }

    void writeImage(const QString& name, const char* key, std::uint16_t version) {
        writeFile(name, bytesOf(units::makeImage(key, version, version)));
    }

    void load(const QString& name) {
        chooseInDialog(name);
        button("cmdLoading").click();
    }

    /// Lets `act` operate the file dialog that the next click opens; closes it if `act` does not.
    void inDialog(const std::function<void(QFileDialog&)>& act) {
        QTimer::singleShot(0, &window, [act] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            act(*dialog);
            if (dialog->isVisible())
                dialog->reject();
        });
    }

    void chooseInDialog(const QString& name) {
        inDialog([path = file(name)](QFileDialog& dialog) {
            dialog.selectFile(path);
            QMetaObject::invokeMethod(&dialog, "accept");
        });
    }

    void save(const QString& name) {
        chooseInDialog(name);
        button("cmdPresent").click();
        awaitEnd();
    }

    void upgrade() {
        button("cmdUpgrade").click();
        awaitEnd();
    }

    /// Calls `look` repeatedly from when the units' journal has `text` until the next box.
    void meanwhile(const std::string& text, const std::function<void()>& look) {
        probe_.callOnTimeout([this, text, look] {
            if (progressDialog() != nullptr && simulator->hasNoted(text) && user.boxes().empty())
                look();
        });
        probe_.start(1ms);
    }

    /// Whether the window is usable, the cursor that the screen really shows over it, and the progress dialog.
    QString state() {
        const bool isArrow = window.windowHandle()->cursor().shape() == Qt::ArrowCursor;
        return QString(button("cmdEnd").isEnabled() ? "usable" : "disabled") + (isArrow ? ", arrow" : ", hourglass") +
               (progressDialog() == nullptr ? "" : ", progress");
    }
    static constexpr auto kReady = "usable, arrow";
    static constexpr auto kRunning = "disabled, hourglass, progress";

    void choose(int target) { window.findChild<QRadioButton*>(QString("optPresent(%1)").arg(target))->toggle(); }
    QPushButton& button(const char* name) { return *window.findChild<QPushButton*>(name); }
    QString row(int index) { return label("lblTitle(%1)", index).text() + ' ' + label("lblVersion(%1)", index).text(); }
    QLabel& label(const char* name, int index) {
        return *window.findChild<QLabel*>(QString::fromLatin1(name).arg(index));
    }

    static QWidget* progressDialog() {
        for (QWidget* shown : QApplication::topLevelWidgets())
            if (shown->objectName() == "frmWait")
                return shown;
        return nullptr;
    }

    /// Whether the file is a save of `unit`.
    bool isSaved(const QString& name, units::Unit unit) const {
        return readFile(name) == firmware(unit).left(options.uploadBlocks * kBlockSize).leftJustified(kImageSize, '\0');
    }

    /// Uses the real time-outs, for tests on a clock that jumps over idle time.
    void waitAsInReality() {
        gWaits = Waits{};
        longestRun_ = 5min;
        // With equal time-outs a unit could give up just before the program repeats a packet.
        options.timing = units::Timing{.packetWait = 15s};
    }

    frmMain window;

private:
    void awaitEnd() {
        waitServingEvents(longestRun_, [] { return !TransferRun::isRunning(); });
    }

    std::chrono::milliseconds longestRun_ = 30s;
    QTimer probe_;
};

class MainWindowTest : public testing::Test, protected MainWindowRig {};
