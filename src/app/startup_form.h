/// The start-up form: from the start of the program to the main window.
#pragma once

#include <QWidget>

class QComboBox;
class QLabel;
class QPushButton;

/// What the start-up form needs of the main window.
class MainWindowAtStart {
public:
    /// Creates the window hidden; that ends the program when `TYPE.INI` is missing.
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
/// Stays loaded, but hidden, for the rest of the run. Closing it ends the program.
class frmStartUp : public QWidget {
public:
    explicit frmStartUp(MainWindowAtStart& mainWindow);

    /// Runs the start-up sequence, once. A failure is reported; the port choice is shown then.
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
    bool testing_ = false;  ///< a test is under way; a second "Set" meanwhile does nothing

    QLabel* imgLogo;
    QLabel* lblBPS;
    QComboBox* cmbBps;
    QLabel* lblCom;
    QComboBox* cmbCom;
    QPushButton* cmdTest;
    QPushButton* cmdEnd;
    QWidget* shpComm;
};
