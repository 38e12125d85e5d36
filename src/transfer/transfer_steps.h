/// Transfer sequence: the steps that lead a unit through a transfer and back to normal operation.
#pragma once

#include "link/device_commands.h"
#include "system/sleep_inhibitor.h"
#include "transfer/transfer_screen.h"

#include <QString>

#include <optional>

/// States of a transfer.
///
///     write:  7 --> 12 --> 6              7 to 6 when the unit refuses the start, or the image send fails
///                     `--> 13 --> 14      when a verification follows; it is a read, and runs from 1 to 0 within 13
///     read:   1 --> 2 --> 4 --> 5 --> 0   to 5 from anywhere: refused, time-out, failure, Cancel
enum TransferState : int {
    kIdleAfterRead = 0,          ///< nothing is awaited
    kReadToStart = 1,            ///< "Save the present firmware", or the verification, calls the read step with it
    kReceivingBlocks = 2,        ///< a block, or the first EOT, is awaited
    kAwaitingSecondEot = 4,      ///< the first EOT has been refused, its repeat is awaited
    kReadEnded = 5,              ///< the next step closes the read
    kIdleAfterWrite = 6,         ///< nothing is awaited
    kWriteToStart = 7,           ///< "Start upgrade" calls the write step with it
    kFirstWriteTick = 8,         ///< from here to kImageSent a tick calls the write step
    kImageSent = 12,             ///< the next tick closes the write
    kVerificationToRun = 13,     ///< the main window runs the verification within the same tick
    kIdleAfterVerification = 14  ///< nothing is awaited
};

/// Current state of the transfer; the main window stores what a step returns, Cancel sets kReadEnded.
extern int gTransferState;

/// Set while a step runs: a tick, a click or a step that finds it set does nothing.
extern bool gTransferBusy;

/// What a run uses, fixed when it starts: no later choice of the operator changes it.
struct TransferJob {
    int unit = kSensorAmplifier;      ///< kSensorAmplifier or kInterfaceUnit
    bool verificationTicked = false;  ///< a verification follows the write; a read is that of a verification
};

/// The steps of a transfer, and the one place that closes it.
///
/// A step does a bounded amount of work and returns the next state. None throws: what goes wrong is shown, and the run
/// is closed.
class TransferSteps {
public:
    explicit TransferSteps(TransferScreen& screen) : screen_(screen) {}

    /// Fixes what the steps of the next run use; called before its first step.
    void begin(const TransferJob& job) { job_ = job; }

    /// What the run uses that was begun last.
    const TransferJob& job() const { return job_; }

    /// Does the work of `state` in a write.
    ///
    /// @return the next state; `state` itself where a write has nothing to do; 0 when a step is running already
    int fncWriteStep(int state);

    /// Does the work of `state` in a read: a save of the firmware to gSaveFileName, or the read-back of a verification.
    ///
    /// @return the next state; `state` itself where a read has nothing to do; 0 when a step is running already
    int fncReadStep(int state);

    /// Cancels a read that receives: tells the unit, and lets the next step close the read. Does nothing in any other
    /// state.
    static void cancelRead();

private:
    int startWrite();
    int closeWrite();
    int failedWrite();
    void sendImage();

    int readStep(int state);
    int startRead();
    int receive();
    int receiveSecondEot();
    int closeRead();

    QString sendWithRetries(const QString& code) const;
    QString fncStartTransfer(const QString& code);
    QString fncEndTransfer();
    QString endTransfer(bool verificationFollows);

    TransferScreen& screen_;
    TransferJob job_;
    std::optional<SleepInhibitor> awake_;  ///< from the start of a transfer to its end
};
