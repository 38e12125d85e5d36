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

/// Names the image and shows the progress of a transfer and the time left. Modeless.
///
/// Has no close box, and cannot be closed by keyboard.
class frmWait : public QDialog {
public:
    /// Loads the dialog, hidden; it has no parent, but stays above `owner` and is centred on it.
    /// @param imageName, imageVersion  of the loaded image, which the message names
    /// @param cancel                   called when the operator presses "Cancel"
    frmWait(QWidget& owner, const QString& imageName, const QString& imageVersion, std::function<void()> cancel);

    /// Sets the bar to 0 of `bytes` and shows the dialog.
    void start(int bytes);

    /// Replaces the message that names the image.
    void setMessage(const QString& message);

    /// Moves the bar to `bytes`; painting does not delay the transfer.
    void setBytes(int bytes);

    /// Cancels a read; hidden when the dialog is loaded.
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
    QElapsedTimer sinceFirst_;  ///< since the first progress; until then the unit prepares itself
    int first_ = 0;             ///< bytes done at that time
    int bytes_ = 0;
};

/// Text for a QProgressBar: the percentage, and the time left for `total` bytes if those from `first` to `bytes` took
/// `elapsed`. In the first second, the percentage alone.
QString progressText(std::chrono::milliseconds elapsed, int first, int bytes, int total);
