/// The start-up form, shown from program start until the main window.
#pragma once

#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;

/// What the start-up form needs of the main window.
class MainWindowAtStart {
public:
    /// Creates the window hidden; ends the program if `TYPE.INI` is missing.
    virtual void createHidden() = 0;
    /// Refreshes caption and rows.
    virtual void subSetAllVersion() = 0;
    /// Shows the window.
    virtual void showWindow() = 0;

protected:
    ~MainWindowAtStart() = default;
};

/// Reads the settings, opens the port, tests the connection, identifies the units and hands over to the main window;
/// offers the port list when the first test fails.
///
/// Stays loaded but hidden afterwards. Closing it ends the program.
class frmStartUp : public QWidget {
public:
    explicit frmStartUp(MainWindowAtStart& mainWindow);

    /// Runs the start-up sequence, once. A failure is reported, and the port choice shown.
    void load();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void startUp();
    void fillLists();
    void setPortControlsVisible(bool visible);
    void showPainted();
    void selectConfiguredPort();
    void judgeFirstTest(const QString& result);
    void offerPortChoice();
    void enterMainWindow();
    void cmdTest_Click();
    void testChosenPort();

    MainWindowAtStart& mainWindow_;
    bool testing_ = false;  ///< a test is running; "Set" does nothing meanwhile

    QLabel* imgLogo;
    QLabel* lblBPS;
    QComboBox* cmbBps;
    QLabel* lblCom;
    QComboBox* cmbCom;
    QPushButton* cmdTest;
    QPushButton* cmdEnd;
    QWidget* shpComm;
};
