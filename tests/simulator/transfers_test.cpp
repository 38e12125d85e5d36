#include "simulator/block_sender.h"
#include "simulator/packet_receiver.h"
#include "tests/simulator/frames.h"

#include <gtest/gtest.h>

namespace units::test {

const Bytes kAcked{kAck};
const Bytes kRefused{kNak};
const Bytes kNothing;

/// A receiver on a line on which nothing takes time.
struct Download {
    explicit Download(CheckMode check = CheckMode::crc)
        : mode(check),
          receiver(mode, false, faults, journal, Timing{}, [this](const Bytes& bytes, Time) { accepted = bytes; }) {
        EXPECT_EQ(perform(receiver, receiver.begin(now), now), Bytes{mode == CheckMode::crc ? kCrcStart : kNak});
    }

    Bytes feed(const Bytes& bytes) { return test::feed(receiver, bytes, now); }

    void sendUpTo(unsigned last) {
        for (unsigned number = 1; number <= last; ++number)
            ASSERT_EQ(feed(packet(number, mode)), kAcked) << number;
    }

    CheckMode mode;
    Journal journal;
    FaultBook faults{{}};
    Time now{0};
    Bytes accepted;
    PacketReceiver receiver;
};

TEST(PacketReceiver, AsksTwentyTimesForTheStart) {
    Download download;
    for (int tries = 1; tries < 20; ++tries)
        EXPECT_EQ(pass(download.receiver, download.now), Bytes{kCrcStart});
    EXPECT_EQ(pass(download.receiver, download.now), kNothing);
    EXPECT_TRUE(download.receiver.over());
    EXPECT_EQ(download.now, std::chrono::seconds(60));
}

TEST(PacketReceiver, RefusesEverySingleBitError) {
    for (const CheckMode mode : {CheckMode::crc, CheckMode::sum}) {
        Download download(mode);
        const Bytes good = packet(1, mode);
        std::size_t violations = 0;
        for (std::size_t bit = 8; bit < good.size() * 8; ++bit) {
            Bytes damaged = good;
            damaged[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
            ASSERT_EQ(download.feed(damaged), kRefused) << bit;
            ASSERT_EQ(download.journal.violations().size(), ++violations) << bit;
        }
        EXPECT_EQ(download.feed(good), kAcked);
    }
}

TEST(PacketReceiver, RefusesWhatIsOutOfOrderAndGoesOn) {
    struct Case {
        const char* name;
        unsigned sentBefore;
        Bytes bytes;
        Bytes answer;
        std::vector<std::string> violations;  // none: a cancellation
    };
    const Case cases[] = {
        {"later packet", 3, packet(5), {}, {"packet number 5 after 3 blocks"}},
        {"packet zero", 0, packet(0), {}, {"packet number 0 after 0 blocks"}},
        {"packet before last", 3, packet(2), {}, {"packet number 2 after 3 blocks"}},
        {"packet after the last", 1920, packet(1921), {}, {"packet number 129 after 1920 blocks"}},
        {"repeat without reason", 5, packet(5), kAcked, {"packet 5 sent again without reason"}},
        {"other start of packet", 1, {kStx}, {}, {"byte between packets: 02"}},
        {"blank", 0, {' '}, {}, {"byte between packets: 20"}},
        {"one CAN and a packet", 2, {kCan, kSoh}, {}, {"a single CAN"}},
        {"one CAN", 2, {kCan}, {}, {"a single CAN"}},
        {"packet broken off", 2, {kSoh, 3, 0xFC, 1}, {}, {"packet broken off after 4 bytes -> NAK"}},
        {"end before the first", 0, {kEot}, kRefused, {"EOT after 0 blocks -> NAK"}},
        {"end before the last", 1919, {kEot}, kRefused, {"EOT after 1919 blocks -> NAK"}},
        {"cancelled before the first packet", 0, {kCan, kCan}, {}, {}},
        {"cancelled between packets", 7, {kCan, kCan}, {}, {}},
        {"cancelled within a packet", 7, {kSoh, 8, 0xF7, 1, kCan, kCan}, {}, {}},
    };
    for (const Case& wrong : cases) {
        Download download;
        download.sendUpTo(wrong.sentBefore);
        EXPECT_EQ(download.feed(wrong.bytes), wrong.answer) << wrong.name;
        if (wrong.answer.empty() && !download.receiver.over())
            pass(download.receiver, download.now);
        EXPECT_EQ(download.journal.violations(), wrong.violations) << wrong.name;
        EXPECT_EQ(download.accepted, kNothing) << wrong.name;
        const bool complete = wrong.sentBefore == 1920;
        const Bytes next = complete ? Bytes{kEot} : packet(wrong.sentBefore + 1);
        EXPECT_EQ(download.receiver.over(), wrong.violations.empty()) << wrong.name;
        EXPECT_TRUE(download.receiver.over() || download.feed(next) == kAcked) << wrong.name;
        EXPECT_EQ(download.accepted, complete ? image() : kNothing) << wrong.name;
    }
}

/// A sender on a line on which nothing takes time.
struct Upload {
    explicit Upload(unsigned blocks) : sender(image(), blocks, false, faults, journal, Timing{}) { sender.begin(now); }

    Bytes answer(const Bytes& bytes) { return test::feed(sender, bytes, now); }

    Journal journal;
    FaultBook faults{{}};
    Time now{0};
    BlockSender sender;
};

TEST(BlockSender, SendsAllBlocksAndTwoEnds) {
    Upload upload(1920);
    Bytes sent = upload.answer({kNak});
    for (unsigned number = 1; number <= 1920; ++number) {
        ASSERT_EQ(sent, packet(number, CheckMode::sum)) << number;
        sent = upload.answer({kAck});
    }
    EXPECT_EQ(sent, Bytes{kEot});
    EXPECT_EQ(upload.answer({kNak}), Bytes{kEot});
    EXPECT_FALSE(upload.sender.over());
    EXPECT_EQ(upload.answer({kAck}), kNothing);
    EXPECT_TRUE(upload.sender.over());
    EXPECT_TRUE(upload.journal.violations().empty());
}

TEST(BlockSender, RepeatsTenTimes) {
    for (const bool silent : {false, true}) {
        Upload upload(3);
        upload.answer({kNak});
        for (int repeat = 1; repeat <= 11; ++repeat)
            EXPECT_EQ(silent ? pass(upload.sender, upload.now) : upload.answer({kNak}),
                      repeat == 11 ? kNothing : packet(1, CheckMode::sum));
        EXPECT_TRUE(upload.sender.over());
    }
}

TEST(BlockSender, ReportsAnyWrongAnswer) {
    struct Case {
        Bytes answers;
        std::vector<std::string> violations;  // none: a cancellation
    };
    const Case cases[] = {{{kCrcStart}, {"byte that does not answer a block: 43"}},
                          {{kAck}, {"byte that does not answer a block: 06"}},
                          {{kNak, kStx, 0x30, 0x30}, {"byte that does not answer a block: 02"}},
                          {{kNak, kCan, kAck}, {"a single CAN"}},
                          {{kNak, kAck, kAck, kAck, kAck}, {"ACK of the first EOT"}},
                          {{kNak, kAck, kAck, kAck, kNak, kNak}, {"NAK of a later EOT than the first"}},
                          {{kCan, kCan}, {}},
                          {{kNak, kAck, kCan, kCan}, {}}};
    for (const Case& wrong : cases) {
        Upload upload(3);
        upload.answer(wrong.answers);
        EXPECT_EQ(upload.journal.violations(), wrong.violations);
        EXPECT_TRUE(upload.sender.over() || !wrong.violations.empty());
    }
}

}  // namespace units::test
