/// Transfer sequence: the steps that lead a unit through a transfer and back to normal operation.
#pragma once

#include "system/sleep_inhibitor.h"
#include "transfer/transfer_screen.h"

#include <QString>

#include <optional>

/// States of a transfer.
///
///     write:  7 --> 12 --> 6        7 to 6 when the unit refuses the start, or the image send fails
enum TransferState : int {
    kIdleAfterWrite = 6,  ///< nothing is awaited
    kWriteToStart = 7,    ///< "Start upgrade" calls the write step with it
    kImageSent = 12,      ///< the next tick closes the write
};

/// States from here to kImageSent are the write step's work at a tick.
inline constexpr int kFirstWriteTick = 8;

/// Current state of the transfer; the main window stores what a step returns.
extern int gTransferState;

/// Set while a step runs: a tick, a click or a step that finds it set does nothing.
extern bool gTransferBusy;

/// The steps of a transfer, and the one place that closes it.
///
/// A step does a bounded amount of work and returns the next state. None throws: what goes wrong is shown, and the run
/// is closed.
class TransferSteps {
public:
    explicit TransferSteps(TransferScreen& screen) : screen_(screen) {}

    /// Does the work of `state` in a write.
    ///
    /// @return the next state; `state` itself where a write has nothing to do; 0 when a step is running already
    int fncWriteStep(int state);

private:
    int startWrite();
    int closeWrite();
    int closeFailedWrite();
    void sendImage();
    QString fncStartTransfer(const QString& code);
    QString fncEndTransfer();

    TransferScreen& screen_;
    std::optional<SleepInhibitor> awake_;  ///< from the start of a transfer to its end
};
