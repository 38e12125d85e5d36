/// What the transfer engine needs of the screen.
#pragma once

/// The main window and its progress dialog, as the transfer engine sees them.
class TransferScreen {
public:
    /// Sets the progress bar to 0 of kImageSize bytes and shows the progress dialog.
    virtual void showProgress() = 0;
    /// Moves the progress bar to `bytes`, 0 to kImageSize.
    virtual void setProgress(int bytes) = 0;
    /// Unloads the progress dialog.
    virtual void unloadProgress() = 0;

    /// Lets the timer `CommTimer` call the steps, every 100 ms.
    virtual void startCommTimer() = 0;
    /// Stops it.
    virtual void stopCommTimer() = 0;

    /// Enables the main window again.
    virtual void enableWindow() = 0;
    /// Gives the main window its default cursor.
    virtual void setDefaultCursor() = 0;
    /// Copies the version of the image into the row of `unit`, to which it has been written.
    virtual void showWrittenVersion(int unit) = 0;

protected:
    ~TransferScreen() = default;
};
