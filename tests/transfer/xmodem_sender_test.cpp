#include "transfer/xmodem_sender.h"

#include "fuzz/support/packets.h"
#include "simulator/image.h"
#include "support/print.h"
#include "text/string_table.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

class Sender : public testing::Test {
protected:
    Sender() { gLangOffset = 10000; }

    const units::Bytes made = units::makeImage("SVA-STD", 13500, 7);
    const QByteArray image{reinterpret_cast<const char*>(made.data()), static_cast<qsizetype>(made.size())};
};

TEST_F(Sender, WhatTheReceiverDoesEndsAsItMust) {
    struct Case {
        const char* bytes;  ///< A ACK, N NAK, X CAN, C, '.' time is up, any other a stray byte
        int sends;          ///< packets that go out
        int result;         ///< 0: the send goes on
        const char* words;
    };
    const Case cases[] = {
        {"C", 1, 0, ""},
        {"N", 1, 0, ""},
        {"999999999C", 1, 0, ""},
        {"9999999999", 0, 4097, "Before the first block: 10 unexpected bytes came, the last one 39"},
        {"99999X999999999C", 1, 0, ""},
        {"XC", 1, 0, ""},
        {"X9X", 0, 4099, "Before the first block: the unit cancelled the transfer (CAN)"},
        {".", 0, 4098, "Before the first block: the unit did not ask for the image within 60 s"},
        {"CNNNNNNNNNA", 11, 0, ""},
        {"CANNNNNNNNNN", 11, 4097, "Block 2 of 1920: sent 10 times; the unit refused it (NAK)"},
        {"C..........", 10, 4098, "Block 1 of 1920: sent 10 times; the unit did not answer"},
        {"CNNNNN....N", 10, 4097, "Block 1 of 1920: sent 10 times; the unit refused it (NAK)"},
        {"CNNNNNNNNNXNNNNNNNNNA", 20, 0, ""},
        {"CXNXNXA", 4, 0, ""},
        {"CX.XA", 3, 0, ""},
        {"CX9CX", 1, 4099, "Block 1 of 1920: the unit cancelled the transfer (CAN)"},
        {"C9C9A", 2, 0, ""},
    };
    const auto onTheWire = [](std::string text) {
        const std::pair<char, char> names[] = {{'A', kAck}, {'N', kNak}, {'X', kCan}};
        for (const auto& [name, byte] : names)
            std::replace(text.begin(), text.end(), name, byte);
        return text;
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.bytes);
        XmodemSender fresh(image, 60s, 10s);
        int packets = 0;
        for (const char byte : onTheWire(c.bytes)) {
            ASSERT_FALSE(fresh.hasEnded());
            const SendOrder next = byte == '.' ? fresh.timeUp() : fresh.take(byte);
            packets += next.packet.isEmpty() ? 0 : 1;
            EXPECT_EQ(next.wait, fresh.hasEnded() ? 0s : packets == 0 ? 60s : 10s);
            const bool cancelledBeforeTheStart = packets == 0 && byte == kCan;
            EXPECT_EQ(next.clearInput, (fresh.hasEnded() && !cancelledBeforeTheStart) || (packets == 0 && byte == '9'));
        }
        EXPECT_EQ(packets, c.sends);
        ASSERT_EQ(fresh.failure().has_value(), c.result != 0);
        if (fresh.failure()) {
            EXPECT_EQ(fresh.failure()->number(), c.result);
            EXPECT_EQ(fresh.failure()->description(), c.words);
        }
    }
}

TEST_F(Sender, EveryPacketIsRightIsRepeatedAsItIsAndIsFollowedByTheNext) {
    for (const char start : {kCrcStart, kNak}) {
        XmodemSender whole(image, 60s, 10s);
        SendOrder next = whole.take(start);
        for (int number = 1; number <= 1'920; ++number) {
            ASSERT_TRUE(isPacket(next.packet, number, image)) << number;
            ASSERT_EQ(next.packet.size(), start == kNak ? 132 : 133);
            ASSERT_EQ(whole.acknowledgedBytes(), (number - 1) * 128);
            for (const char refusal : {kNak, '\0'}) {
                XmodemSender disturbed = whole;
                ASSERT_EQ((refusal == kNak ? disturbed.take(kNak) : disturbed.timeUp()).packet, next.packet) << number;
                ASSERT_TRUE(disturbed.take('C').packet.isEmpty()) << number;
                ASSERT_NE(disturbed.take(kAck).packet, next.packet) << number;
            }
            next = whole.take(kAck);
        }
        ASSERT_EQ(next.packet, QByteArray(1, 4));
        EXPECT_EQ(whole.take(kNak).packet, QByteArray(1, 4));
        EXPECT_FALSE(whole.hasEnded());
        XmodemSender refused = whole;
        for (int i = 0; i < 9; ++i)
            refused.take(kNak);
        ASSERT_TRUE(refused.failure());
        EXPECT_EQ(refused.failure()->description(),
                  "At the end of the image (EOT): sent 10 times; the unit refused it (NAK)");
        whole.take(kAck);
        EXPECT_TRUE(whole.hasEnded());
        EXPECT_FALSE(whole.failure());
        EXPECT_EQ(whole.acknowledgedBytes(), 245'760);
    }
}
