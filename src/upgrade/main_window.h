/// The main window: the units' firmware, the loaded image, the target, and the buttons.
///
/// Row 0 is the sensor amplifier, row 1 the interface unit, row 2 the loaded image. Closing the window ends the program
/// at once.
///
/// Verification and save are there, but their controls are hidden unless showServiceControls() is called.
#pragma once

#include "app/startup_form.h"
#include "link/device_commands.h"
#include "transfer/raw_line.h"
#include "transfer/transfer_run.h"
#include "transfer/transfer_screen.h"
#include "upgrade/fitted_label.h"
#include "upgrade/progress_dialog.h"

#include <QPointer>
#include <QWidget>

#include <array>
#include <memory>

class QCheckBox;
class QLabel;
class QPushButton;
class QRadioButton;

class frmMain : public QWidget, public MainWindowAtStart, public TransferScreen {
public:
    frmMain();

    /// Shows "Verification", "Save the present firmware" and, during a read, the progress dialog's Cancel, and marks
    /// the window as the one for service engineers. Called before createHidden(), if at all.
    void showServiceControls();

    // Start
    void createHidden() override;
    void subSetAllVersion() override;
    void showWindow() override;

    // Transfer
    void showProgress() override;
    void setProgress(int bytes) override;
    void announceVerification() override;
    void releaseWindow() override;
    void raiseWindow() override;
    void setDefaultCursor() override;
    void showWrittenVersion(int unit) override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    static constexpr int kImageRow = 2;
    static constexpr std::size_t rowOf(int unit) { return unit == kSensorAmplifier ? 0 : 1; }

    void createControls();
    void connectControls();
    void subSetWindowTexts();
    void Form_QueryUnload();
    void disableWindow();
    void enableWindow();

    // Target choice
    TransferJob chosenJob() const;
    void optPresent_Click(int index);

    // Image loading
    void cmdLoading_Click();
    void loadChosenImage();

    // Upgrade run
    void cmdUpgrade_Click();
    void startUpgrade();
    bool confirmCommunication();

    // Save run
    void cmdPresent_Click();
    void startSave();

    frmWait& progressDialog();

    /// All controls, disabled during a run. The window itself is not, since it would lose its cursor.
    QWidget* content_;
    std::array<QRadioButton*, 2> optPresent{};
    std::array<FittedLabel*, 3> lblTitle{};
    std::array<FittedLabel*, 3> lblVersion{};
    QCheckBox* chkVerify;
    QPushButton* cmdLoading;
    QPushButton* cmdPresent;
    QPushButton* cmdUpgrade;
    QPushButton* cmdEnd;
    QLabel* LabelWriteProtect;
    QLabel* lblService = nullptr;  ///< null except for service engineers
    RawLine line_;
    TransferRun run_{*this, line_};
    std::unique_ptr<frmWait> frmWait_;  ///< null while the progress dialog is not loaded
    QPointer<QWidget> focusBefore_;     ///< control that had the focus before the window was disabled
};
