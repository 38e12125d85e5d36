#include "transfer/xmodem_sender.h"

#include "link/com_port.h"
#include "link/waits.h"
#include "text/runtime_failure.h"
#include "text/string_table.h"
#include "transfer/byte_wait.h"
#include "transfer/image_buffers.h"
#include "transfer/raw_send.h"
#include "transfer/response_codes.h"
#include "transfer/xmodem_packet.h"

namespace {

constexpr int kMostStrayBytes = 10;
constexpr int kMostSends = 10;
constexpr int kCansToAbort = 2;

/// Sends one packet in one write.
/// @return 0, or the number of a port error, which is shown
int fncSendPacket(const QByteArray& packet) {
    const int result = fncSendRaw(packet);
    return result == kResultSuccess ? 0 : result;
}

/// One send of an image: its mode, and the words for what happened.
class Sender {
public:
    Sender(const std::function<void(int)>& acknowledged, QString& whatHappened)
        : acknowledged_(acknowledged), whatHappened_(whatHappened) {}

    int run();

private:
    int waitForStart();
    int sendBlocks();
    int deliver(const QByteArray& packet);
    int awaitAcknowledgement(const QByteArray& packet);
    int fail(int result, const QString& what);

    const std::function<void(int)>& acknowledged_;
    QString& whatHappened_;
    ByteWait wait_;
    PacketCheck check_ = PacketCheck::crc;
    QString place_;  ///< what is being sent, in the operator's words
};

int Sender::fail(int result, const QString& what) {
    boundPort().discardInput();
    whatHappened_ = place_ + what;
    return result;
}

int Sender::run() {
    place_ = messageText(u"Before the first block: ", u"最初のブロックの前: ");
    if (const int failed = waitForStart(); failed != 0)
        return failed;
    if (const int failed = sendBlocks(); failed != 0)
        return failed;
    place_ = messageText(u"At the end of the image (EOT): ", u"イメージの終わり (EOT): ");
    if (const int failed = deliver(QByteArray(1, kEot)); failed != 0)
        return failed;
    acknowledged_(kImageSize);
    return kXmodemSent;
}

/// Waits for the receiver to ask for the image; its start character chooses the mode.
int Sender::waitForStart() {
    int strayBytes = 0;
    int cans = 0;
    while (true) {
        const int byte = wait_.fncWaitByte(gWaits.transferStart);
        switch (byte) {
        case kCrcStart:
            check_ = PacketCheck::crc;
            return 0;
        case kNak:
            check_ = PacketCheck::checksum;
            return 0;
        case kCan:
            strayBytes = 0;
            if (++cans == kCansToAbort)
                return fail(kXmodemCancelled, messageText(u"the unit cancelled the transfer (CAN)",
                                                          u"ユニットが転送を中止しました (CAN)"));
            break;
        case ByteWait::kTimeUp:
            return fail(kXmodemNoAnswer, messageText(u"the unit did not ask for the image within %1 s",
                                                     u"ユニットが%1秒以内に転送を開始しませんでした")
                                             .arg(std::chrono::duration<double>(gWaits.transferStart).count()));
        default:
            boundPort().discardInput();
            if (++strayBytes == kMostStrayBytes)
                return fail(kXmodemRefused, messageText(u"%1 unexpected bytes came, the last one %2",
                                                        u"予期しないバイトを%1回受信しました (最後は %2)")
                                                .arg(strayBytes)
                                                .arg(byte, 2, 16, QLatin1Char('0')));
        }
    }
}

int Sender::sendBlocks() {
    constexpr int kBlocks = kImageSize / kBlockSize;
    for (int block = 1; block <= kBlocks; ++block) {
        place_ = messageText(u"Block %1 of %2: ", u"ブロック %1/%2: ").arg(block).arg(kBlocks);
        const QByteArray data = gImageBuf.mid((block - 1) * kBlockSize, kBlockSize);
        if (const int failed = deliver(buildPacket(block, data, check_)); failed != 0)
            return failed;
        acknowledged_(block * static_cast<int>(kBlockSize));
    }
    return 0;
}

/// Sends `packet`, again and again where need be, until the receiver acknowledges it.
int Sender::deliver(const QByteArray& packet) {
    try {
        if (const int failed = fncSendPacket(packet); failed != 0)
            return fail(failed, messageText(u"the port failed", u"ポートエラー"));
        return awaitAcknowledgement(packet);
    } catch (const RuntimeFailure& f) {
        throw RuntimeFailure(f.number(), place_ + f.description());
    }
}

int Sender::awaitAcknowledgement(const QByteArray& packet) {
    int sends = 1;
    int cans = 0;
    while (true) {
        const int byte = wait_.fncWaitByte(gWaits.packetAnswer);
        switch (byte) {
        case kAck:
            return 0;
        case kNak:
        case ByteWait::kTimeUp:
            cans = 0;
            if (sends == kMostSends)
                return byte == kNak ? fail(kXmodemRefused, messageText(u"sent %1 times; the unit refused it (NAK)",
                                                                       u"%1回送信しましたが、拒否されました (NAK)")
                                                               .arg(sends))
                                    : fail(kXmodemNoAnswer, messageText(u"sent %1 times; the unit did not answer",
                                                                        u"%1回送信しましたが、応答がありません")
                                                                .arg(sends));
            ++sends;
            if (const int failed = fncSendPacket(packet); failed != 0)
                return fail(failed, messageText(u"the port failed", u"ポートエラー"));
            break;
        case kCan:
            sends = 1;
            if (++cans == kCansToAbort)
                return fail(kXmodemCancelled, messageText(u"the unit cancelled the transfer (CAN)",
                                                          u"ユニットが転送を中止しました (CAN)"));
            break;
        default:
            break;
        }
    }
}

}  // namespace

int fncXmodemSend(const std::function<void(int)>& acknowledged, QString& whatHappened) {
    return Sender(acknowledged, whatHappened).run();
}
