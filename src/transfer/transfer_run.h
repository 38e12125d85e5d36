/// The transfer run: a write, with or without verification, or a save.
#pragma once

#include "link/device_commands.h"
#include "system/sleep_inhibitor.h"
#include "transfer/block_receiver.h"
#include "transfer/transfer_line.h"
#include "transfer/transfer_screen.h"
#include "transfer/xmodem_sender.h"

#include <QString>

#include <optional>

/// States of a transfer.
///
///     write:         7 --> 12 --> 6          7 to 6 when the unit refuses the start, or sending the image fails
///                        `--> 13 --> 2       when a verification follows; to 5 when the unit refuses it
///     read:   1 --> 2 --> 4 --> 5 --> 0      to 5 from anywhere: refused, silence, failure, Cancel
///                                 `--> 14    when it was part of a verification
enum TransferState : int {
    kIdleAfterRead = 0,          ///< nothing is awaited
    kReadToStart = 1,            ///< the step puts the unit into its upload state
    kReceivingBlocks = 2,        ///< a block, or the first EOT, is awaited
    kAwaitingSecondEot = 4,      ///< the first EOT was refused, its repeat is awaited
    kReadEnded = 5,              ///< the step closes the read
    kIdleAfterWrite = 6,         ///< nothing is awaited
    kWriteToStart = 7,           ///< the step puts the unit into its download state and sends the whole image
    kImageSent = 12,             ///< the step closes the write
    kVerificationToRun = 13,     ///< the step begins the read-back
    kIdleAfterVerification = 14  ///< nothing is awaited
};

/// State of the current run, or of the last one. Only the run itself writes it.
extern const TransferState& gTransferState;

/// Set while a step runs; ticks, clicks and Cancel do nothing meanwhile.
extern const bool& gTransferBusy;

/// What a run uses, fixed at its start whatever the operator chooses later.
struct TransferJob {
    int unit = kSensorAmplifier;      ///< kSensorAmplifier or kInterfaceUnit
    bool verificationTicked = false;  ///< a write is verified; a save reads but writes no file
    QString file{};                   ///< to write by a save
};

/// One run at a time, the only owner of its state. Whatever happens, finish() closes it exactly once.
///
/// A run proceeds in steps of bounded length. A tick of the line calls the next one; in a read, incoming bytes call it
/// as well, at once. A failure in a step is reported and ends the run.
class TransferRun {
public:
    TransferRun(TransferScreen& screen, TransferLine& line) : screen_(screen), line_(line) {}

    /// Whether a run is in progress.
    static bool isRunning();

    /// Writes gImageBuf, and verifies it if the job says so. Returns when the image has been sent, or the run has
    /// failed and ended. Does nothing while a run is in progress. Never throws.
    void write(const TransferJob& job) { start(job, kWriteToStart); }

    /// Reads the unit's firmware into gReadBuf and saves it. Returns after the first step; otherwise like write().
    void read(const TransferJob& job) { start(job, kReadToStart); }

    /// Cancels a read in progress: tells the unit, and lets the next step close the run. Does nothing in any other
    /// state or while a step runs.
    void cancel();

private:
    void start(const TransferJob& job, TransferState first);
    void step();
    TransferState fncWriteStep(TransferState step);
    TransferState fncReadStep(TransferState step);

    TransferState startWrite();
    void sendImage();
    void carryOut(const SendOrder& order);
    TransferState closeWrite();
    TransferState failWrite(bool resumes);

    TransferState startRead();
    TransferState receiveBlock();
    TransferState receiveSecondEot();
    void subStoreBlock();
    void answer(char byte);
    TransferState closeRead();
    TransferState closeReadBack();

    QString sendWithRetries(const QString& code);
    QString fncStartTransfer(const QString& code);
    void endTransfer();
    void finish(bool resumes, const std::function<void()>& sayHowItWent);

    TransferScreen& screen_;
    TransferLine& line_;
    TransferJob job_;
    bool readsBack_ = false;                 ///< the read is part of a verification
    std::optional<BlockReceiver> receiver_;  ///< of the current read, once it has started
    qsizetype readCount_ = 0;                ///< bytes stored in gReadBuf
    std::optional<SleepInhibitor> awake_;    ///< from the start of a run to its end
};
