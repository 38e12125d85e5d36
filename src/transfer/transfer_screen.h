/// What a transfer needs of the screen.
#pragma once

/// The main window and its progress dialog, as the transfer sees them. The window is disabled before a run starts.
class TransferScreen {
public:
    /// Sets the progress bar to 0 of kImageSize bytes and shows the progress dialog.
    virtual void showProgress() = 0;
    /// Moves the progress bar to `bytes`, 0 to kImageSize.
    virtual void setProgress(int bytes) = 0;
    /// Unloads the progress dialog; the next one shown is for the verification.
    virtual void announceVerification() = 0;
    /// Unloads the progress dialog and enables the main window, but keeps its cursor.
    virtual void releaseWindow() = 0;
    /// Brings the main window to the front.
    virtual void raiseWindow() = 0;
    /// Restores the main window's default cursor.
    virtual void setDefaultCursor() = 0;
    /// Shows the version of the image in the row of `unit`, to which it has been written.
    virtual void showWrittenVersion(int unit) = 0;

protected:
    ~TransferScreen() = default;
};
