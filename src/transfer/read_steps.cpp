/// The steps of a read.
#include "text/error_report.h"
#include "text/message_box.h"
#include "text/string_table.h"
#include "transfer/binary_file.h"
#include "transfer/block_receiver.h"
#include "transfer/image_buffers.h"
#include "transfer/raw_send.h"
#include "transfer/response_codes.h"
#include "transfer/transfer_steps.h"
#include "transfer/xmodem_packet.h"

#include <QScopedValueRollback>

#include <algorithm>

/// Sends one control byte to the unit.
static void answer(char byte) {
    fncSendRaw(QByteArray(1, byte));
    subAnswerSent();
}

int TransferSteps::fncReadStep(int state) {
    if (gTransferBusy)
        return 0;
    const QScopedValueRollback<bool> guard(gTransferBusy, true);
    int next = kReadEnded;
    runTrapped([&] { next = readStep(state); });
    return next;
}

int TransferSteps::readStep(int state) {
    switch (state) {
    case kReadToStart:
        return startRead();
    case kReceivingBlocks:
        return receive();
    case kAwaitingSecondEot:
        return receiveSecondEot();
    case kReadEnded:
        return closeRead();
    default:
        return state;
    }
}

int TransferSteps::startRead() {
    // A read that the unit refuses is closed by a tick as well.
    screen_.startCommTimer();
    return fncResultNo(fncStartTransfer(QStringLiteral("52"))) == kResultSuccess ? kReceivingBlocks : kReadEnded;
}

int TransferSteps::receive() {
    switch (fncPollReceive()) {
    case kBlock:
        subStoreBlock();
        // A unit may send more than an image.
        screen_.setProgress(std::min(gReadCount, static_cast<int>(kImageSize)));
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

int TransferSteps::receiveSecondEot() {
    switch (fncPollReceive()) {
    case kEotCame:
        answer(kAck);
        if (!job_.verificationTicked)
            fncBinaryFile(gSaveFileName, gReadBuf, kWriteFile);
        return kReadEnded;
    case kBlock:
        // Neither stored nor acknowledged.
        gBlockLen = 0;
        return kAwaitingSecondEot;
    case kReceiveTimeOut:
        return kReadEnded;
    default:
        return kAwaitingSecondEot;
    }
}

int TransferSteps::closeRead() {
    fncEndTransfer();
    if (!job_.verificationTicked)
        showMessageBox(literalText(u"Succeed", u"正常終了"), kInformation, literalText(u"Dravolt", u"ドラボルト"));
    screen_.setDefaultCursor();
    return kIdleAfterRead;
}

void TransferSteps::cancelRead() {
    constexpr int kCans = 10;
    if (gTransferBusy || gTransferState < kReceivingBlocks || gTransferState > kAwaitingSecondEot)
        return;
    // A failure shows a box, in which the timer goes on: no tick may close the read, and the dialog, below it.
    const QScopedValueRollback<bool> guard(gTransferBusy, true);
    // Stop at the first failure; it has already been shown.
    for (int i = 0; i < kCans && fncSendRaw(QByteArray(1, kCan)) == kResultSuccess; ++i) {
    }
    gTransferState = kReadEnded;
}
