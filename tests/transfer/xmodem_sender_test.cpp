#include "transfer/xmodem_sender.h"

#include "support/print.h"
#include "text/string_table.h"
#include "transfer/memory_line.h"

#include <gtest/gtest.h>

TEST(Sender, FollowsTheReceiversAnswers) {
    gLangOffset = 10000;
    const QByteArray image = someImage();
    const std::tuple<const char*, int, const char*> cases[] = {
        // answers: A ACK, N NAK, X CAN, C, '.' time-out, '*' an ACK for every block, else a stray byte;
        // packets sent; number and text of the failure, or nothing while the send goes on
        {"9999999999", 0, "4097 Before the first block: 10 unexpected bytes came, the last one 39"},
        {".", 0, "4098 Before the first block: the unit did not ask for the image within 60 s"},
        {"99X999999999CNNNNNNNNNA", 11, ""},
        {"CXAXNNNNNNNNNN", 11, "4097 Block 2 of 1920: sent 10 times; the unit refused it (NAK)"},
        {"C..........", 10, "4098 Block 1 of 1920: sent 10 times; the unit did not answer"},
        {"CNNNNNNNNNXNNNXNNNNNNNNNN", 22, "4097 Block 1 of 1920: sent 10 times; the unit refused it (NAK)"},
        {"CX9CX", 1, "4099 Block 1 of 1920: the unit cancelled the transfer (CAN)"},
        {"C*NNNNNNNNNN", 1'930, "4097 At the end of the image (EOT): sent 10 times; the unit refused it (NAK)"},
        {"C*NA", 1'922, "sent"}};
    for (const auto& [names, sends, end] : cases) {
        SCOPED_TRACE(names);
        XmodemSender sender(image, 60s, 10s);
        int packets = 0;
        QByteArray bytes = names;
        bytes.replace("*", QByteArray(1'920, 'A')).replace('A', kAck).replace('N', kNak).replace('X', kCan);
        for (const char byte : bytes) {
            ASSERT_FALSE(sender.hasEnded());
            const SendOrder next = byte == '.' ? sender.timeUp() : sender.take(byte);
            packets += next.packet.isEmpty() ? 0 : 1;
            EXPECT_EQ(next.wait, sender.hasEnded() ? 0s : packets == 0 ? 60s : 10s);
            EXPECT_EQ(next.clearInput, packets == 0 ? byte != kCan : sender.failure().has_value()) << "noise";
        }
        const auto failure = sender.failure();
        EXPECT_EQ(packets, sends);
        EXPECT_EQ(failure ? QString("%1 %2").arg(failure->number()).arg(failure->description())
                          : QString(sender.hasEnded() ? "sent" : ""),
                  end);
    }
}

TEST(XmodemPacket, HasTheExactBytes) {
    const QByteArray data = '\x32' + QByteArray(126, '\0') + '\xff';
    const QByteArray ones(128, '\xff');
    EXPECT_EQ(buildPacket(1, data, PacketCheck::checksum), QByteArray::fromHex("0101fe") + data + '\x31');
    EXPECT_EQ(buildPacket(256, ones, PacketCheck::crc), QByteArray::fromHex("0100ff") + ones + "\xed\xa9");
}
