#include "transfer/block_receiver.h"

#include "support/print.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

TEST(BlockReceiver, FindsBlocksAndControlBytesAmongNoise) {
    const QByteArray block = QByteArray::fromHex("0105fa") + QByteArray(128, '\x04') + '\x77';
    const auto hex = [](const char* text) { return QByteArray::fromHex(text); };
    const std::tuple<const char*, QList<QByteArray>, PollResult> cases[] = {
        // name, pieces, result of the last one
        {"a block", {block}, kBlock},
        {"a block in three pieces", {block.left(1), block.mid(1, 130), block.right(1)}, kBlock},
        {"an incomplete block", {block.left(131), ""}, kIncomplete},
        {"what follows a block is dropped", {block + hex("04"), ""}, kNothing},
        {"a late reply before a block", {hex("02303030303030333030353030303003") + block}, kBlock},
        {"EOT", {hex("04")}, kEotCame},
        {"EOT inside a block is data", {block.left(4), hex("04")}, kIncomplete},
        {"ACK", {hex("06") + block}, kAckCame},
        {"NAK", {hex("15") + block}, kNakCame},
        {"C", {hex("43") + block}, kStartCame}};
    for (const auto& [name, pieces, last] : cases) {
        BlockReceiver receiver(3s, {});
        PollResult result = kNothing;
        for (const QByteArray& piece : pieces)
            result = receiver.take(piece, {});
        EXPECT_EQ(result, last) << name;
        EXPECT_EQ(result == kBlock ? receiver.data() : QByteArray(128, '\x04'), QByteArray(128, '\x04')) << name;
    }
}

TEST(BlockReceiver, TimesOutAfterThreeSecondsWithoutABlock) {
    const auto after = [](std::chrono::milliseconds time) { return BlockReceiver::Time{} + time; };
    BlockReceiver receiver(3s, after(0s));
    EXPECT_EQ(receiver.take("", after(2'999ms)), kNothing);
    EXPECT_EQ(receiver.take("C", after(3s)), kReceiveTimeOut) << "a unit that asks for an image does not send one";
    receiver.answered(after(3s));
    EXPECT_EQ(receiver.take("noise", after(5'999ms)), kNothing);
    EXPECT_EQ(receiver.take("noise", after(6s)), kReceiveTimeOut);
    EXPECT_EQ(receiver.take("\x01", after(6s)), kIncomplete) << "a byte of a block comes before the time-out";
    EXPECT_EQ(receiver.take("", after(8'999ms)), kIncomplete);
    EXPECT_EQ(receiver.take("", after(9s)), kReceiveTimeOut);
}
