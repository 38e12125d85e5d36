/// What a transfer needs of the screen.
#pragma once

/// The main window and its progress dialog, as the transfer sees them. The window is disabled before a run starts.
class TransferScreen {
public:
    /// Sets the progress bar to 0 of kImageSize bytes and shows the progress dialog.
    virtual void showProgress() = 0;
    /// Moves the progress bar to `bytes`, 0 to kImageSize.
    virtual void setProgress(int bytes) = 0;
    /// Unloads the progress dialog; the one that is shown next speaks of the verification.
    virtual void announceVerification() = 0;
    /// Unloads the progress dialog and gives the main window back to the operator, but for its cursor.
    virtual void releaseWindow() = 0;
    /// Brings the main window to the front.
    virtual void raiseWindow() = 0;
    /// Gives the main window its default cursor.
    virtual void setDefaultCursor() = 0;
    /// Copies the version of the image into the row of `unit`, to which it has been written.
    virtual void showWrittenVersion(int unit) = 0;

protected:
    ~TransferScreen() = default;
};
