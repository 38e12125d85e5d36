#include "simulator/packet_receiver.h"
#include "tests/simulator/frames.h"

#include <gtest/gtest.h>

namespace units::test {

/// A receiver on a line on which nothing takes time.
struct Download {
    explicit Download(CheckMode check)
        : mode(check),
          receiver(mode, false, faults, journal, Timing{}, [this](const Bytes& bytes, Time) { accepted = bytes; }) {
        perform(receiver, receiver.begin(now), now);
    }

    Bytes feed(const Bytes& bytes) { return test::feed(receiver, bytes, now); }

    CheckMode mode;
    Journal journal;
    FaultBook faults{{}};
    Time now{0};
    Bytes accepted;
    PacketReceiver receiver;
};

TEST(PacketReceiver, RefusesEverySingleBitError) {
    for (const CheckMode mode : {CheckMode::crc, CheckMode::sum}) {
        Download download(mode);
        const Bytes good = packet(1, mode);
        std::size_t violations = 0;
        for (std::size_t bit = 8; bit < good.size() * 8; ++bit) {
            Bytes damaged = good;
            damaged[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
            ASSERT_EQ(download.feed(damaged), Bytes{kNak}) << bit;
            ASSERT_EQ(download.journal.violations().size(), ++violations) << bit;
        }
        EXPECT_EQ(download.feed(good), Bytes{kAck});
    }
}

TEST(PacketReceiver, RefusesWhatIsOutOfOrderAndGoesOn) {
    // packets before, what comes then, its answer, violations (none: a cancellation)
    const std::tuple<unsigned, Bytes, Bytes, std::vector<std::string>> cases[] = {
        {3, packet(5), {}, {"packet number 5 after 3 blocks"}},
        {0, packet(0), {}, {"packet number 0 after 0 blocks"}},
        {3, packet(2), {}, {"packet number 2 after 3 blocks"}},
        {1920, packet(1921), {}, {"packet number 129 after 1920 blocks"}},
        {5, packet(5), {kAck}, {"packet 5 sent again without reason"}},
        {1, {kStx}, {}, {"byte between packets: 02"}},
        {2, {kCan, kSoh}, {}, {"a single CAN"}},
        {2, {kSoh, 3, 0xFC, 1}, {}, {"packet broken off after 4 bytes -> NAK"}},
        {0, {kEot}, {kNak}, {"EOT after 0 blocks -> NAK"}},
        {1919, {kEot}, {kNak}, {"EOT after 1919 blocks -> NAK"}},
        {0, {kCan, kCan}, {}, {}},
        {7, {kSoh, 8, 0xF7, 1, kCan, kCan}, {}, {}},
    };
    for (const auto& [sentBefore, bytes, answer, violations] : cases) {
        const std::string name = hexDump(bytes).substr(0, 20);
        Download download(CheckMode::crc);
        for (unsigned number = 1; number <= sentBefore; ++number)
            ASSERT_EQ(download.feed(packet(number)), Bytes{kAck}) << number;
        EXPECT_EQ(download.feed(bytes), answer) << name;
        if (answer.empty() && !download.receiver.over())
            pass(download.receiver, download.now);
        EXPECT_EQ(download.journal.violations(), violations) << name;
        EXPECT_EQ(download.accepted, Bytes()) << name;
        const bool complete = sentBefore == 1920;
        const Bytes next = complete ? Bytes{kEot} : packet(sentBefore + 1);
        EXPECT_EQ(download.receiver.over(), violations.empty()) << name;
        EXPECT_TRUE(download.receiver.over() || download.feed(next) == Bytes{kAck}) << name;
        EXPECT_EQ(download.accepted, complete ? image() : Bytes()) << name;
    }
}

}  // namespace units::test
