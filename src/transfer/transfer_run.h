/// The transfer run: a write, the verification that may follow it, or a save; from its start to its end.
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
///     write:         7 --> 12 --> 6          7 to 6 when the unit refuses the start, or the image send fails
///                        `--> 13 --> 2       when a verification follows; to 5 when the unit refuses it
///     read:   1 --> 2 --> 4 --> 5 --> 0      to 5 from anywhere: refused, silence, failure, Cancel
///                                 `--> 14    when it was that of a verification
enum TransferState : int {
    kIdleAfterRead = 0,          ///< nothing is awaited
    kReadToStart = 1,            ///< the step puts the unit into its upload state
    kReceivingBlocks = 2,        ///< a block, or the first EOT, is awaited
    kAwaitingSecondEot = 4,      ///< the first EOT has been refused, its repeat is awaited
    kReadEnded = 5,              ///< the step closes the read
    kIdleAfterWrite = 6,         ///< nothing is awaited
    kWriteToStart = 7,           ///< the step puts the unit into its download state and sends the whole image
    kImageSent = 12,             ///< the step closes the write
    kVerificationToRun = 13,     ///< the step begins the read-back
    kIdleAfterVerification = 14  ///< nothing is awaited
};

/// State of the run under way, or of the last one. Only the run itself writes it.
extern const TransferState& gTransferState;

/// Set while a step runs: a tick, a click or a Cancel that comes meanwhile does nothing.
extern const bool& gTransferBusy;

/// What a run uses, fixed when it starts: no later choice of the operator changes it.
struct TransferJob {
    int unit = kSensorAmplifier;      ///< kSensorAmplifier or kInterfaceUnit
    bool verificationTicked = false;  ///< a verification follows a write; a save reads, but writes no file
    QString file{};                   ///< of a save
};

/// One run at a time, the only owner of its state. Whatever happens in it, finish() closes it, once.
///
/// A run goes on in steps, each a bounded piece of work. A tick of the line calls the next one; in a read, bytes that
/// come in call it as well, at once. What goes wrong in a step is reported, and leads to the end of the run.
class TransferRun {
public:
    TransferRun(TransferScreen& screen, TransferLine& line) : screen_(screen), line_(line) {}

    /// Whether a run is under way.
    static bool isRunning();

    /// Writes gImageBuf, and verifies it if the job says so. Returns when the image has been sent, or the run has
    /// failed and ended. Does nothing while a run is under way; throws nothing.
    void write(const TransferJob& job) { start(job, kWriteToStart); }

    /// Reads the unit's firmware into gReadBuf and saves it. Returns after the first step; else as write().
    void read(const TransferJob& job) { start(job, kReadToStart); }

    /// Cancels a read that receives: tells the unit, and lets the next step close the run. Does nothing in any other
    /// state, and while a step runs.
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
    bool readsBack_ = false;                 ///< the read is that of a verification
    std::optional<BlockReceiver> receiver_;  ///< of the read under way, once it has started
    qsizetype readCount_ = 0;                ///< bytes stored in gReadBuf
    std::optional<SleepInhibitor> awake_;    ///< from the start of a run to its end
};
