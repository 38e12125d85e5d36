#include "transfer/transfer_run.h"

#include "link/frame_link.h"
#include "link/protocol_words.h"
#include "link/waits.h"
#include "system/runtime_failure.h"
#include "text/error_report.h"
#include "text/message_box.h"
#include "text/string_table.h"
#include "transfer/image_file.h"
#include "transfer/response_codes.h"
#include "transfer/xmodem_packet.h"
#include "transfer/xmodem_sender.h"

#include <algorithm>

static TransferState state = kIdleAfterRead;
static bool busy = false;
const TransferState& gTransferState = state;
const bool& gTransferBusy = busy;

static_assert(kImageSize == XmodemSender::kPackets * kBlockSize, "an image fills its packets");

namespace {

/// Blocks ticks, bytes and clicks while a step runs, since its boxes and waits serve events.
class Busy {
public:
    explicit Busy(TransferLine& line) : line_(line) {
        busy = true;
        line_.holdInput(true);
    }
    ~Busy() {
        busy = false;
        // Only blocks and EOTs are handled at once. Closing a run waits for the tick, when the line is quiet.
        line_.holdInput(state != kReceivingBlocks && state != kAwaitingSecondEot);
    }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

private:
    TransferLine& line_;
};

}  // namespace

// ---- the run ----

bool TransferRun::isRunning() {
    return busy || (state != kIdleAfterRead && state != kIdleAfterWrite && state != kIdleAfterVerification);
}

void TransferRun::start(const TransferJob& job, TransferState first) {
    if (isRunning())
        return;
    job_ = job;
    readsBack_ = false;
    awake_.emplace();
    state = first;
    step();
}

void TransferRun::step() {
    if (busy)
        return;
    const Busy guard(line_);
    const bool writes = state == kWriteToStart || state == kImageSent;
    try {
        state = writes ? fncWriteStep(state) : fncReadStep(state);
    } catch (...) {
        subReportError();
        state = writes ? failWrite(true) : kReadEnded;
    }
}

TransferState TransferRun::fncWriteStep(TransferState step) {
    return step == kWriteToStart ? startWrite() : closeWrite();
}

TransferState TransferRun::fncReadStep(TransferState step) {
    switch (step) {
    case kVerificationToRun:
    case kReadToStart:
        return startRead();
    case kReceivingBlocks:
        return receiveBlock();
    case kAwaitingSecondEot:
        return receiveSecondEot();
    case kReadEnded:
        return readsBack_ ? closeReadBack() : closeRead();
    default:
        return step;
    }
}

void TransferRun::cancel() {
    constexpr int kCans = 10;
    if (busy || state < kReceivingBlocks || state > kAwaitingSecondEot)
        return;
    const Busy guard(line_);
    // Stop at the first failure; it has already been shown.
    for (int i = 0; i < kCans && line_.fncSendRaw(QByteArray(1, kCan)) == kResultSuccess; ++i) {
    }
    state = kReadEnded;
    // The rest of a block may still be on its way, so the commands that follow wait for a whole tick.
    line_.startTicks([this] { step(); });
}

// ---- a write ----

TransferState TransferRun::startWrite() {
    if (fncResultNo(fncStartTransfer(kStartDownload)) != kResultSuccess)
        return failWrite(!job_.verificationTicked);
    sendImage();
    line_.startTicks([this] { step(); });
    return kImageSent;
}

/// Sends the image: the sender decides, the line carries out.
/// @throws RuntimeFailure  the image was not sent
void TransferRun::sendImage() {
    XmodemSender sender(gImageBuf, gWaits.transferStart, gWaits.packetAnswer);
    try {
        SendOrder order = sender.begin();
        carryOut(order);
        while (!sender.hasEnded()) {
            const std::optional<char> byte = line_.fncWaitByte(order.wait);
            order = byte ? sender.take(*byte) : sender.timeUp();
            carryOut(order);
            screen_.setProgress(sender.acknowledgedBytes());
        }
    } catch (const RuntimeFailure& f) {
        throw RuntimeFailure(f.number(), sender.place() + f.description());
    }
    if (sender.failure())
        throw RuntimeFailure(*sender.failure());
}

void TransferRun::carryOut(const SendOrder& order) {
    if (order.clearInput)
        line_.clearInput();
    if (order.packet.isEmpty())
        return;
    if (const int result = line_.fncSendRaw(order.packet); result != kResultSuccess)
        throw RuntimeFailure(result, textByOffset({u"the port failed", u"ポートエラー"}));
}

TransferState TransferRun::closeWrite() {
    if (job_.verificationTicked) {
        endTransfer();
        readsBack_ = true;
        screen_.announceVerification();
        return kVerificationToRun;
    }
    finish(/*resumes*/ true, [] { showMessageBox(textByLanguage({u"Succeed", u"正常終了"}), kInformation); });
    screen_.showWrittenVersion(job_.unit);
    return kIdleAfterWrite;
}

TransferState TransferRun::failWrite(bool resumes) {
    finish(resumes, [] { showMessageBox(textByLanguage({u"Failed", u"異常終了"}), kInformation); });
    return kIdleAfterWrite;
}

// ---- a read ----

TransferState TransferRun::startRead() {
    // A read that the unit refuses is closed by a tick as well.
    line_.startTicks([this] { step(); });
    return fncResultNo(fncStartTransfer(kStartUpload)) == kResultSuccess ? kReceivingBlocks : kReadEnded;
}

TransferState TransferRun::receiveBlock() {
    switch (receiver_->take(line_.received(), line_.now())) {
    case kBlock:
        subStoreBlock();
        answer(kAck);
        return kReceivingBlocks;
    case kEotCame:
        answer(kNak);
        return kAwaitingSecondEot;
    case kReceiveTimeOut:
        return kReadEnded;
    default:
        return kReceivingBlocks;
    }
}

/// Appends the data of the received block to gReadBuf, up to its capacity.
void TransferRun::subStoreBlock() {
    const QByteArray data = receiver_->data().left(gReadBuf.size() - readCount_);
    std::copy(data.begin(), data.end(), gReadBuf.begin() + readCount_);
    readCount_ += data.size();
    // A unit may send more than an image.
    screen_.setProgress(static_cast<int>(std::min(readCount_, kImageSize)));
}

TransferState TransferRun::receiveSecondEot() {
    switch (receiver_->take(line_.received(), line_.now())) {
    case kEotCame:
        answer(kAck);
        if (!job_.verificationTicked)
            fncBinaryFile(job_.file, gReadBuf, kWriteFile);
        return kReadEnded;
    case kReceiveTimeOut:
        return kReadEnded;
    default:
        // Blocks too are neither stored nor acknowledged.
        return kAwaitingSecondEot;
    }
}

/// Sends one control byte to the unit.
void TransferRun::answer(char byte) {
    line_.fncSendRaw(QByteArray(1, byte));
    receiver_->answered(line_.now());
}

TransferState TransferRun::closeRead() {
    const bool quiet = job_.verificationTicked;
    finish(/*resumes*/ !quiet, [quiet] {
        if (!quiet)
            showMessageBox(textByLanguage({u"Succeed", u"正常終了"}), kInformation,
                           textByLanguage({u"Dravolt", u"ドラボルト"}));
    });
    return kIdleAfterRead;
}

TransferState TransferRun::closeReadBack() {
    endTransfer();
    finish(/*resumes*/ true, [this] {
        // Without the count, an empty read would match an image of zeros.
        const bool same = readCount_ >= kImageSize && fncCompareImage() == 0;
        const QString title = textByLanguage({u"Dravolt", u"ドラボルト"});
        if (same)
            showMessageBox(textByLanguage({u"Succeed", u"正常終了"}), kInformation, title);
        else
            showMessageBox(textByLanguage({u"Failed", u"ベリファイ失敗"}), kCritical, title);
    });
    return kIdleAfterVerification;
}

// ---- the commands of both ----

/// Sends operation command `code`, up to three times, until it is carried out.
///
/// Leaves the attempt number in gintCommRetry: the frame link reports a failure only at the last attempt.
/// @return the response of the last attempt
QString TransferRun::sendWithRetries(const QString& code) {
    constexpr int kLastAttempt = 3;
    QString response = line_.operation(code, job_.unit);
    if (response == kNormalEnd)
        return response;
    for (gintCommRetry = 2; gintCommRetry <= kLastAttempt; ++gintCommRetry) {
        response = line_.operation(code, job_.unit);
        if (response == kNormalEnd)
            break;
    }
    return response;
}

static QString refusal(const QString& code, const QString& response) {
    return textByOffset({u"The unit did not carry out command %1 in three attempts; its last answer: %2",
                         u"コマンド %1 を3回送信しましたが、実行されませんでした。最後の応答: %2"})
        .arg(code, response.isEmpty() ? textByOffset({u"unusable", u"無効"}) : response);
}

/// Puts the unit into its download state, or with kStartUpload into its upload state, and shows the progress.
/// @return the unit's response, or "" after three failed attempts, which have been reported
QString TransferRun::fncStartTransfer(const QString& code) {
    gReadBuf.fill('\0');
    readCount_ = 0;
    line_.clear();
    if (code == kStartDownload) {
        const QString prepared = sendWithRetries(kPrepareWrite);
        if (prepared != kNormalEnd)
            return prepared;
        gintCommRetry = 0;
    }
    const QString started = sendWithRetries(code);
    if (started != kNormalEnd) {
        subReportError(refusal(code, started));
        return {};
    }
    if (code == kStartUpload) {
        line_.fncSendRaw(QByteArray(1, kNak));
        receiver_.emplace(gWaits.readSilence, line_.now());
        line_.watchInput();
    }
    screen_.showProgress();
    return started;
}

void TransferRun::endTransfer() {
    line_.operation(kEndTransfer, job_.unit);
    line_.serveEvents();
}

/// Ends the run, whatever has happened: returns the unit to normal operation and the window to the operator.
///
/// @param resumes       whether to send the unit the last command as well
/// @param sayHowItWent  shows the result message, if there is one
void TransferRun::finish(bool resumes, const std::function<void()>& sayHowItWent) {
    line_.stopTicks();
    endTransfer();
    if (resumes) {
        line_.operation(kResume, job_.unit);
        line_.serveEvents();
    }
    if (readsBack_) {
        line_.close();
        line_.pause(gWaits.verificationPause);
    }
    screen_.releaseWindow();
    awake_.reset();
    sayHowItWent();
    if (readsBack_)
        screen_.raiseWindow();
    screen_.setDefaultCursor();
}
