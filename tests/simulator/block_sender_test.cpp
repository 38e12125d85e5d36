#include "simulator/block_sender.h"

#include "simulator/control_bytes.h"
#include "simulator/image.h"
#include "tests/simulator/frames.h"

#include <gtest/gtest.h>

namespace units {
namespace {

/// A sender of three blocks on a line on which nothing takes time.
class Upload {
public:
    explicit Upload(const std::vector<std::string>& faults = {}, unsigned blocks = 3, bool unsure = false)
        : faults_(faults), sender_(image, blocks, unsure, faults_, journal, Timing{}) {
        sender_.begin(now);
    }

    Bytes answer(std::uint8_t byte) { return test::feed(sender_, std::span(&byte, 1), now); }
    Bytes pass() { return test::pass(sender_, now); }
    Bytes block(unsigned number) const { return test::packetOf(image, number, CheckMode::sum); }
    BlockSender& sender() { return sender_; }

    const Bytes image = makeImage("SV-AMP", 12504, 3);
    Journal journal;
    Time now{0};

private:
    FaultBook faults_;
    BlockSender sender_;
};

TEST(BlockSender, SendsAllBlocksAndTwoEnds) {
    Upload upload({}, 1920);
    Bytes sent = upload.answer(kNak);
    for (unsigned number = 1; number <= 1920; ++number) {
        ASSERT_EQ(sent, upload.block(number)) << number;
        sent = upload.answer(kAck);
    }
    EXPECT_EQ(sent, Bytes{kEot});
    EXPECT_EQ(upload.answer(kNak), Bytes{kEot});
    EXPECT_FALSE(upload.sender().over());
    EXPECT_EQ(upload.answer(kAck), Bytes{});
    EXPECT_TRUE(upload.sender().over());
    EXPECT_TRUE(upload.journal.violations().empty());
}

TEST(BlockSender, WaitsAMinuteForTheStart) {
    Upload upload;
    EXPECT_EQ(upload.pass(), Bytes{});
    EXPECT_TRUE(upload.sender().over());
    EXPECT_EQ(upload.now, std::chrono::seconds(60));
}

TEST(BlockSender, RepeatsTenTimes) {
    for (const bool silent : {false, true}) {
        Upload upload;
        upload.answer(kNak);
        for (int repeat = 0; repeat < 10; ++repeat)
            EXPECT_EQ(silent ? upload.pass() : upload.answer(kNak), upload.block(1));
        EXPECT_EQ(silent ? upload.pass() : upload.answer(kNak), Bytes{});
        EXPECT_TRUE(upload.sender().over());
        EXPECT_EQ(upload.now > std::chrono::seconds(100), silent);
    }
}

TEST(BlockSender, ReportsAnyOtherAnswer) {
    struct Case {
        const char* name;
        Bytes answers;
        const char* violation;
    };
    const Case cases[] = {{"CRC start", {kCrcStart}, "43"},
                          {"ACK before the start", {kAck}, "06"},
                          {"command", {kNak, kStx, 0x30, 0x30}, "02"},
                          {"one CAN", {kNak, kCan, kAck}, "a single CAN"},
                          {"first end acknowledged", {kNak, kAck, kAck, kAck, kAck}, "first EOT"},
                          {"second end refused", {kNak, kAck, kAck, kAck, kNak, kNak}, "later EOT"}};
    for (const Case& wrong : cases) {
        Upload upload;
        test::feed(upload.sender(), wrong.answers, upload.now);
        ASSERT_EQ(upload.journal.violations().size(), 1U) << wrong.name;
        EXPECT_NE(upload.journal.violations()[0].find(wrong.violation), std::string::npos) << wrong.name;
    }
}

TEST(BlockSender, CancellationIsNoViolation) {
    for (const Bytes& answers : {Bytes{kCan, kCan}, Bytes{kNak, kAck, kCan, kCan}, Bytes{kNak, kCan, kCan}}) {
        Upload upload;
        test::feed(upload.sender(), answers, upload.now);
        EXPECT_TRUE(upload.sender().over());
        EXPECT_TRUE(upload.journal.violations().empty());
    }
}

TEST(BlockSender, ShowsFaultsOfBlocks) {
    Upload upload({"garble@block1", "bcc@block1#2", "number:77@block1#3", "lost@block1#4", "cut:9@block1#5"});
    const Bytes good = upload.block(1);
    const auto differences = [&good](const Bytes& bytes) {
        std::vector<std::size_t> positions;
        for (std::size_t i = 0; i < good.size(); ++i)
            if (bytes.at(i) != good[i])
                positions.push_back(i);
        return positions;
    };
    EXPECT_EQ(differences(upload.answer(kNak)), std::vector<std::size_t>{66});
    EXPECT_EQ(differences(upload.answer(kNak)), std::vector<std::size_t>{131});
    EXPECT_EQ(differences(upload.answer(kNak)), (std::vector<std::size_t>{1, 2}));
    EXPECT_EQ(upload.answer(kNak), Bytes{});
    EXPECT_EQ(upload.pass(), Bytes(good.begin(), good.begin() + 9));
    EXPECT_EQ(upload.answer(kNak), good);
    EXPECT_EQ(upload.answer(kAck), upload.block(2));
}

TEST(BlockSender, AfterALostEndTheNextCountsAsTheFirst) {
    Upload upload({"lost@eot1"}, 1);
    upload.answer(kNak);
    EXPECT_EQ(upload.answer(kAck), Bytes{});
    EXPECT_EQ(upload.pass(), Bytes{kEot});
    EXPECT_EQ(upload.answer(kNak), Bytes{kEot});
    upload.answer(kAck);
    EXPECT_TRUE(upload.sender().over());
    EXPECT_TRUE(upload.journal.violations().empty());
}

}  // namespace
}  // namespace units
