#include "simulator/packet_receiver.h"

#include "simulator/control_bytes.h"
#include "simulator/image.h"
#include "tests/simulator/frames.h"

#include <gtest/gtest.h>
#include <random>

namespace units {
namespace {

const Bytes kAcked{kAck};
const Bytes kRefused{kNak};

/// A receiver on a line on which nothing takes time.
class Download {
public:
    explicit Download(const std::vector<std::string>& faults = {}, CheckMode mode = CheckMode::crc, bool unsure = false)
        : mode_(mode),
          faults_(faults),
          receiver_(mode, unsure, faults_, journal, Timing{}, [this](const Bytes& bytes, Time) { accepted = bytes; }) {
        const Script script = receiver_.begin(now);
        started = bytesOf(script);
        receiver_.sent(now);
    }

    Bytes feed(std::span<const std::uint8_t> bytes) { return test::feed(receiver_, bytes, now); }
    Bytes send(unsigned number) { return feed(test::packetOf(image, number, mode_)); }
    Bytes pass() { return test::pass(receiver_, now); }

    /// Sends packets until all up to `last` are acknowledged; the number it took.
    unsigned sendUpTo(unsigned last, unsigned first = 1) {
        unsigned sent = 0;
        for (unsigned number = first; number <= last; ++sent)
            if (send(number) == kAcked)
                ++number;
        return sent;
    }

    PacketReceiver& receiver() { return receiver_; }

    const Bytes image = makeImage("SV-AMP", 12504, 3);
    Journal journal;
    Time now{0};
    Bytes started;
    Bytes accepted;

private:
    CheckMode mode_;
    FaultBook faults_;
    PacketReceiver receiver_;
};

TEST(PacketReceiver, TakesAnImageInBothModes) {
    for (const CheckMode mode : {CheckMode::crc, CheckMode::sum}) {
        Download download({}, mode);
        EXPECT_EQ(download.started, Bytes{mode == CheckMode::crc ? kCrcStart : kNak});
        EXPECT_EQ(download.sendUpTo(1920), 1920U);
        EXPECT_TRUE(download.accepted.empty());
        EXPECT_EQ(download.feed(Bytes{kEot}), kAcked);
        EXPECT_EQ(download.accepted, download.image);
        EXPECT_TRUE(download.receiver().over());
        EXPECT_TRUE(download.journal.violations().empty());
    }
}

TEST(PacketReceiver, AsksTwentyTimesForTheStart) {
    Download download;
    for (int tries = 1; tries < 20; ++tries) {
        EXPECT_EQ(download.receiver().deadline(), download.now + std::chrono::seconds(3));
        EXPECT_EQ(download.pass(), Bytes{kCrcStart});
    }
    EXPECT_EQ(download.pass(), Bytes{});
    EXPECT_TRUE(download.receiver().over());
    EXPECT_EQ(download.now, std::chrono::seconds(60));
}

TEST(PacketReceiver, RefusesEverySingleBitError) {
    Download download;
    ASSERT_EQ(download.send(1), kAcked);
    const Bytes good = test::packetOf(download.image, 2, CheckMode::crc);
    std::size_t violations = 0;
    for (std::size_t bit = 8; bit < good.size() * 8; ++bit) {
        Bytes damaged = good;
        damaged[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
        ASSERT_EQ(download.feed(damaged), kRefused) << bit;
        ASSERT_EQ(download.journal.violations().size(), ++violations) << bit;
    }
    EXPECT_EQ(download.feed(good), kAcked);
}

TEST(PacketReceiver, RefusesWhatIsOutOfOrder) {
    struct Case {
        const char* name;
        unsigned sentBefore;
        Bytes bytes;
        const char* violation;
    };
    const Bytes image = makeImage("SV-AMP", 12504, 3);
    const Bytes none;
    const Case cases[] = {
        {"later packet", 3, test::packetOf(image, 5, CheckMode::crc), "packet number 5 after 3"},
        {"packet zero", 0, test::packet(0, std::span(image).first(128), CheckMode::crc), "packet number 0 after 0"},
        {"packet before last", 3, test::packetOf(image, 2, CheckMode::crc), "packet number 2 after 3"},
        {"other start of packet", 1, Bytes{kStx}, "byte between packets: 02"},
        {"blank", 0, Bytes{' '}, "byte between packets: 20"},
        {"command", 2, test::requestFrame("0501"), "byte between packets: 02"},
        {"one CAN and a packet", 2, Bytes{kCan, kSoh}, "a single CAN"},
    };
    for (const Case& wrong : cases) {
        Download download;
        download.sendUpTo(wrong.sentBefore);
        EXPECT_EQ(download.feed(wrong.bytes), none) << wrong.name;
        ASSERT_EQ(download.journal.violations().size(), 1U) << wrong.name;
        EXPECT_NE(download.journal.violations()[0].find(wrong.violation), std::string::npos) << wrong.name;
        EXPECT_EQ(download.pass(), wrong.sentBefore == 0 ? Bytes{kCrcStart} : kRefused) << wrong.name;
        EXPECT_EQ(download.send(wrong.sentBefore + 1), kAcked) << wrong.name;
    }
}

TEST(PacketReceiver, RefusesAnEndAfterAnotherCount) {
    for (const unsigned count : {0U, 1U, 1919U}) {
        Download download;
        download.sendUpTo(count);
        EXPECT_EQ(download.feed(Bytes{kEot}), kRefused) << count;
        EXPECT_EQ(download.journal.violations().size(), 1U) << count;
        EXPECT_TRUE(download.accepted.empty()) << count;
    }
    Download tooLong;
    tooLong.sendUpTo(1920);
    tooLong.feed(test::packet(1921, std::span(tooLong.image).first(128), CheckMode::crc));
    EXPECT_EQ(tooLong.journal.violations().size(), 1U);
}

TEST(PacketReceiver, ARepeatNeedsAReason) {
    Download causeless;
    causeless.sendUpTo(5);
    EXPECT_EQ(causeless.send(5), kAcked);
    EXPECT_EQ(causeless.journal.violations().size(), 1U);
    EXPECT_EQ(causeless.send(6), kAcked);

    Download lostAnswer({"lost@packet5*2"});
    lostAnswer.sendUpTo(4);
    EXPECT_EQ(lostAnswer.send(5), Bytes{});
    EXPECT_EQ(lostAnswer.send(5), Bytes{});
    EXPECT_EQ(lostAnswer.send(5), kAcked);
    EXPECT_EQ(lostAnswer.sendUpTo(1920, 6), 1915U);
    lostAnswer.feed(Bytes{kEot});
    EXPECT_EQ(lostAnswer.accepted, lostAnswer.image);
    EXPECT_TRUE(lostAnswer.journal.violations().empty());

    Download impatient;
    impatient.sendUpTo(5);
    EXPECT_EQ(impatient.pass(), kRefused);
    EXPECT_EQ(impatient.send(5), kAcked);
    EXPECT_TRUE(impatient.journal.violations().empty());
}

TEST(PacketReceiver, RefusesABrokenOffPacketAfterASecond) {
    Download download;
    download.feed(std::span(download.image).first(0));
    download.feed(Bytes{kSoh, 1});
    EXPECT_EQ(download.receiver().deadline(), download.now + std::chrono::seconds(1));
    EXPECT_EQ(download.pass(), kRefused);
    EXPECT_EQ(download.journal.violations().size(), 1U);
    EXPECT_EQ(download.send(1), kAcked);
}

TEST(PacketReceiver, CancellationIsNoViolation) {
    struct Case {
        const char* name;
        unsigned sentBefore;
        Bytes bytes;
        bool afterSilence;
    };
    const Case cases[] = {{"before the first packet", 0, {kCan, kCan}, false},
                          {"between packets", 7, {kCan, kCan}, false},
                          {"within a packet", 7, {kSoh, 8, 0xF7, 1, 2, kCan, kCan, kCan}, true}};
    for (const Case& cancel : cases) {
        Download download;
        download.sendUpTo(cancel.sentBefore);
        download.feed(cancel.bytes);
        if (cancel.afterSilence)
            download.pass();
        EXPECT_TRUE(download.receiver().over()) << cancel.name;
        EXPECT_TRUE(download.journal.violations().empty()) << cancel.name;
        EXPECT_TRUE(download.accepted.empty()) << cancel.name;
    }
}

TEST(PacketReceiver, ShowsFaultsOfPackets) {
    struct Case {
        const char* fault;
        Bytes answer;
        bool stored;
    };
    const Case cases[] = {{"nak@packet5", kRefused, false},
                          {"silence@packet5", {}, false},
                          {"lost@packet5", {}, true},
                          {"answer:1806@packet5", {kCan, kAck}, true},
                          {"can:1@packet5", {kCan}, false},
                          {"repeat@packet5", {kAck, kAck}, true},
                          {"noise:00FF@packet5", {0, 0xFF, kAck}, true}};
    for (const Case& expected : cases) {
        Download download({expected.fault});
        download.sendUpTo(4);
        EXPECT_EQ(download.send(5), expected.answer) << expected.fault;
        EXPECT_EQ(download.send(expected.stored ? 6 : 5), kAcked) << expected.fault;
        EXPECT_TRUE(download.journal.violations().empty()) << expected.fault;
    }
    Download cancelled({"can:2@packet5"});
    cancelled.sendUpTo(4);
    EXPECT_EQ(cancelled.send(5), (Bytes{kCan, kCan}));
    EXPECT_TRUE(cancelled.receiver().over());
    EXPECT_EQ(Download({"lost@start"}).started, Bytes{});
    EXPECT_EQ(Download({"noise:00@start"}).started, (Bytes{0, kCrcStart}));
    EXPECT_EQ(Download({"nak@packet300*9"}).sendUpTo(310), 319U);
}

TEST(PacketReceiver, ShowsFaultsOfTheEnd) {
    struct Case {
        const char* fault;
        Bytes answer;
        bool accepted;
    };
    const Case cases[] = {{"nak@eot", kRefused, false},
                          {"silence@eot", {}, false},
                          {"lost@eot", {}, true},
                          {"unplug@eot", {}, false},
                          {"unplugafter@eot", kAcked, true}};
    for (const Case& expected : cases) {
        Download download({expected.fault});
        download.sendUpTo(1920);
        EXPECT_EQ(download.feed(Bytes{kEot}), expected.answer) << expected.fault;
        EXPECT_EQ(!download.accepted.empty(), expected.accepted) << expected.fault;
        EXPECT_EQ(download.feed(Bytes{kEot}), kAcked) << expected.fault;
        EXPECT_EQ(download.accepted, download.image) << expected.fault;
        EXPECT_TRUE(download.receiver().over()) << expected.fault;
        EXPECT_TRUE(download.journal.violations().empty()) << expected.fault;
    }
}

TEST(PacketReceiver, HandsACommandBackOnlyIfTheClientIsUnsure) {
    Download unsure({}, CheckMode::crc, true);
    unsure.feed(Bytes{kStx});
    EXPECT_TRUE(unsure.receiver().over());
    EXPECT_EQ(unsure.receiver().handedBack(), kStx);
    EXPECT_TRUE(unsure.journal.violations().empty());
}

TEST(PacketReceiver, NeverAcceptsNoise) {
    std::mt19937 random(5);
    constexpr std::uint8_t kLikely[] = {kSoh, kStx, kEot, kAck, kNak, kCrcStart, 0, 1, 0xFE, 0xFF};
    for (int round = 0; round < 50; ++round) {
        Download download;
        for (int i = 0; i < 3000 && !download.receiver().over(); ++i) {
            const unsigned choice = static_cast<unsigned>(random() % 64);
            const auto byte = choice < std::size(kLikely) ? kLikely[choice] : static_cast<std::uint8_t>(random() >> 24);
            if (choice == 63)
                download.pass();
            else
                download.feed(std::span(&byte, 1));
        }
        EXPECT_TRUE(download.accepted.empty());
        EXPECT_FALSE(download.journal.violations().empty());
    }
}

}  // namespace
}  // namespace units
