/// The progress dialog.
#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <QTimer>

#include <chrono>
#include <functional>

class QLabel;
class QProgressBar;
class QPushButton;

/// Names the image and shows how much of a transfer is done and how long the rest takes. Modeless.
///
/// Has no close box, and closing it by keyboard does nothing.
class frmWait : public QDialog {
public:
    /// Loads the dialog, hidden; it belongs to nobody but stays above `owner` and is centred on it.
    /// @param imageName, imageVersion  of the loaded image, which the message names
    /// @param cancel                   called when the operator presses "Cancel"
    frmWait(QWidget& owner, const QString& imageName, const QString& imageVersion, std::function<void()> cancel);

    /// Sets the bar to 0 of `bytes` and shows the dialog.
    void start(int bytes);

    /// Replaces the message that names the image.
    void setMessage(const QString& message);

    /// Moves the bar to `bytes`. Its painting does not hold the transfer up.
    void setBytes(int bytes);

    /// Ends a read early; hidden at load.
    QPushButton* cmdCancel;

protected:
    void reject() override {}
    void closeEvent(QCloseEvent* event) override;

private:
    void cmdCancel_Click();
    void refresh();

    QWidget& owner_;
    std::function<void()> cancel_;
    QLabel* lblMsg;
    QProgressBar* prbComm;
    QTimer refresh_;
    QElapsedTimer sinceFirst_;  ///< since the first bytes were done; before them the unit only prepares itself
    int first_ = 0;             ///< those bytes
    int bytes_ = 0;
};

/// Text of a QProgressBar: the share done, and the time that the rest of `total` bytes takes if those from `first` to
/// `bytes` have taken `elapsed`. The share alone before a second has been measured.
QString progressText(std::chrono::milliseconds elapsed, int first, int bytes, int total);
