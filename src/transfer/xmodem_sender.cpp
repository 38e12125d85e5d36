#include "transfer/xmodem_sender.h"

#include "text/string_table.h"

#include <algorithm>

static constexpr int kMaxStrayBytes = 10;
static constexpr int kMaxSends = 10;
static constexpr int kCansToAbort = 2;

SendOrder XmodemSender::begin() const { return {.wait = startWait_}; }

SendOrder XmodemSender::take(char byte) { return number_ == 0 ? takeStart(byte) : takeAnswer(byte); }

SendOrder XmodemSender::timeUp() {
    if (number_ == 0)
        return giveUp(kXmodemNoAnswer, textByOffset({u"the unit did not ask for the image within %1 s",
                                                     u"ユニットが%1秒以内に転送を開始しませんでした"})
                                           .arg(std::chrono::duration<double>(startWait_).count()));
    return sendAgain(kXmodemNoAnswer, textByOffset({u"sent %1 times; the unit did not answer",
                                                    u"%1回送信しましたが、応答がありません"}));
}

/// The receiver asks for the image; its start character selects the check.
SendOrder XmodemSender::takeStart(char byte) {
    switch (byte) {
    case kCrcStart:
        return sendNext();
    case kNak:
        check_ = PacketCheck::checksum;
        return sendNext();
    case kCan:
        strayBytes_ = 0;
        if (++cans_ == kCansToAbort)
            return giveUp(
                kXmodemCancelled,
                textByOffset({u"the unit cancelled the transfer (CAN)", u"ユニットが転送を中止しました (CAN)"}),
                /*clearInput*/ false);
        return begin();
    default:
        if (++strayBytes_ == kMaxStrayBytes)
            return giveUp(kXmodemRefused, textByOffset({u"%1 unexpected bytes came, the last one %2",
                                                        u"予期しないバイトを%1回受信しました (最後は %2)"})
                                              .arg(strayBytes_)
                                              .arg(static_cast<unsigned char>(byte), 2, 16, QLatin1Char('0')));
        return {.clearInput = true, .wait = startWait_};
    }
}

SendOrder XmodemSender::takeAnswer(char byte) {
    switch (byte) {
    case kAck:
        if (number_ <= kPackets)
            return sendNext();
        sent_ = true;
        return {};
    case kNak:
        return sendAgain(kXmodemRefused, textByOffset({u"sent %1 times; the unit refused it (NAK)",
                                                       u"%1回送信しましたが、拒否されました (NAK)"}));
    case kCan:
        sends_ = 1;
        if (++cans_ == kCansToAbort)
            return giveUp(kXmodemCancelled, textByOffset({u"the unit cancelled the transfer (CAN)",
                                                          u"ユニットが転送を中止しました (CAN)"}));
        break;
    default:
        break;
    }
    return {.wait = answerWait_};
}

SendOrder XmodemSender::sendNext() {
    ++number_;
    packet_ = number_ > kPackets ? QByteArray(1, kEot)
                                 : buildPacket(number_, image_.mid((number_ - 1) * kBlockSize, kBlockSize), check_);
    sends_ = 0;
    cans_ = 0;
    return order();
}

/// Repeats a packet that was refused or not answered, unless it has been sent too often.
SendOrder XmodemSender::sendAgain(XmodemResult result, const QString& reason) {
    cans_ = 0;
    return sends_ == kMaxSends ? giveUp(result, reason.arg(sends_)) : order();
}

SendOrder XmodemSender::order() {
    ++sends_;
    return {.packet = packet_, .wait = answerWait_};
}

SendOrder XmodemSender::giveUp(XmodemResult result, const QString& what, bool clearInput) {
    failure_.emplace(result, place() + what);
    return {.clearInput = clearInput};
}

int XmodemSender::acknowledgedBytes() const { return std::max(number_ - 1, 0) * static_cast<int>(kBlockSize); }

QString XmodemSender::place() const {
    if (number_ == 0)
        return textByOffset({u"Before the first block: ", u"最初のブロックの前: "});
    if (number_ > kPackets)
        return textByOffset({u"At the end of the image (EOT): ", u"イメージの終わり (EOT): "});
    return textByOffset({u"Block %1 of %2: ", u"ブロック %1/%2: "}).arg(number_).arg(kPackets);
}
