/// The program from its start, with simulated units at COM1, on its way to a write, a save or a verified write.
#pragma once

#include "app/startup_form.h"
#include "support/main_window_rig.h"

#include <QCheckBox>
#include <QRegularExpression>

/// A session of the program, from fresh state, which comes to its work.
class ProgramSession : public MainWindowRig {
public:
    /// @param work   "Write", "Save" or "Verify", a write with verification
    /// @param fault  of the units, may be empty
    ProgramSession(const std::string& work, const std::string& fault) : saves_(work == "Save") {
        const bool verifies = work == "Verify";
        waitAsInReality();
        writeFile("Setting.INI", "[OPERATION]\nLanguage=ENGLISH\n[IFU]\nCOM=1\n");
        writeFile("TYPE.INI", readFile("TYPE.INI") + "[IFU_TYPE]\nSV-IFU16=D\n");
        writeFile("saved.bin", "old");
        options.amplifierFirmware = units::makeImage("AMPKEY", 12500, 3);
        options.uploadBlocks = verifies ? 1'920 : 9;
        window.showServiceControls();
        window.findChild<QCheckBox*>("chkVerify")->setChecked(verifies);
        window.hide();
        plug({fault});
        orEnd([this] { form.load(); });
    }

    /// Presses "Set" where the program offers its ports. @return whether the main window is there
    bool enter() {
        if (!hasEnded && !window.isVisible())
            orEnd([this] { form.findChild<QPushButton*>("cmdTest")->click(); });
        return window.isVisible();
    }

    /// Does the work. @return how the program says that it went
    QStringList work() {
        user.said();
        if (saves_) {
            save("saved.bin");
        } else {
            load("amp.bin");
            upgrade();
        }
        return user.said().filter(QRegularExpression("^(Succeed|Failed)$"));
    }

    /// Whether the work has come to its end: the image is in the unit, or the firmware in the file.
    bool isDone() const {
        const auto unit = units::Unit::amplifier;
        return saves_ ? isSaved("saved.bin", unit) : readFile("amp.bin") == firmware(unit);
    }

    bool offersPorts() const { return form.isVisible() && form.findChild<QPushButton*>("cmdTest")->isVisible(); }

    bool hasEnded = false;

private:
    void orEnd(const std::function<void()>& act) {
        try {
            act();
        } catch (const ProgramEnded&) {
            hasEnded = true;
        }
    }

    const bool saves_;
    frmStartUp form{window};
};
