#include "simulator/block_sender.h"
#include "simulator/command_machine.h"
#include "simulator/image.h"
#include "simulator/packet_receiver.h"
#include "tests/simulator/frames.h"

#include <gtest/gtest.h>
#include <sstream>

namespace units::test {

static Bytes operator+(Bytes first, const Bytes& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// Gives bytes to a machine on a line on which nothing takes time.
/// @return all that it sends
static Bytes feed(Machine& machine, const Bytes& bytes) {
    Bytes answers;
    for (const std::uint8_t byte : bytes) {
        const Script script = machine.take(byte, Time{0});
        if (!script.steps.empty())
            machine.sent(Time{0});
        answers = answers + bytesOf(script);
    }
    return answers;
}

struct Commands {
    explicit Commands(const std::string& fault) : faults({fault}) {}

    /// @return the text of the reply, from the node number to the response code
    std::string ask(const std::string& command) {
        const Bytes reply = feed(machine, requestFrame(command));
        if (machine.over())
            machine.begin(Time{0});
        return reply.size() < 15 ? std::string() : std::string(reply.begin() + 1, reply.begin() + 15);
    }

    FaultBook faults;
    Devices devices{{}};
    Journal journal;
    CommandMachine machine{devices, faults, journal, Timing{}};
};

TEST(Units, RefuseUnknownCommands) {
    for (const std::string command :
         {"0502", "05011", "0101D30001000001", "0101D40002000001", "0101D40001000002", "0101D4000100000",
          "300550020000", "300550010C00", "300551010000", "300555010000", "30055001000", "3005500100000"}) {
        Commands units("lost@0601");
        EXPECT_EQ(units.ask(command), "00000F" + command.substr(0, 4) + "1001");
        EXPECT_EQ(units.journal.violations(), std::vector{"unknown command '" + command + "'"});
    }
}

TEST(Units, KeepTheOrderOfOperations) {
    struct Case {
        const char* fault;
        const char* orders;  ///< open 0, download 1, upload 2, finish 3, end of transfer 4; "!" after a refused one
    };
    const Case cases[] = {
        {"lost@0601", "0143 00143343 243 04301 1! 01431! 2431! 4! 3! 03! 014303!"},
        {"response:1001@300550", "01! 043"},
        {"silence@300550", "01! 043"},
        {"lost@300550", "01"},
    };
    for (const Case& c : cases) {
        std::istringstream orders(c.orders);
        for (std::string order; orders >> order;) {
            Commands units(c.fault);
            std::string shown;
            for (const char digit : order) {
                if (digit == '!')
                    continue;
                const char* tail = digit == '1' || digit == '2' ? "010C00" : "010000";
                const bool isRefused = units.ask(std::string("30055") + digit + tail).ends_with("1003");
                shown += isRefused ? digit + std::string("!") : std::string(1, digit);
            }
            EXPECT_EQ(shown, order) << c.fault;
            EXPECT_EQ(units.journal.violations().empty(), shown.find('!') == std::string::npos) << c.fault << order;
        }
    }
}

/// A well-formed packet under a number that need not be in range.
static Bytes packet(unsigned number, CheckMode mode = CheckMode::crc) {
    const Bytes payload(kBlockSize, static_cast<std::uint8_t>(number * 7));
    const Bytes sum{sum8(payload)};
    const Bytes crc{static_cast<std::uint8_t>(crc16(payload) >> 8), static_cast<std::uint8_t>(crc16(payload))};
    return Bytes{kSoh, static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(~number)} + payload +
           (mode == CheckMode::crc ? crc : sum);
}

struct Transfer {
    Journal journal;
    FaultBook faults{{}};
    PacketReceiver download{CheckMode::crc, false, faults, journal, Timing{}, [](const Bytes&, Time) {}};
    PacketReceiver downloadWithSums{CheckMode::sum, false, faults, journal, Timing{}, [](const Bytes&, Time) {}};
    BlockSender upload{Bytes(kImageSize), 1, false, faults, journal, Timing{}};
};

TEST(Units, RefuseEverySingleBitErrorOfAPacket) {
    for (const CheckMode mode : {CheckMode::crc, CheckMode::sum}) {
        Transfer units;
        PacketReceiver& receiver = mode == CheckMode::crc ? units.download : units.downloadWithSums;
        const Bytes good = packet(1, mode);
        for (std::size_t bit = 8; bit < good.size() * 8; ++bit) {
            Bytes damaged = good;
            damaged[bit / 8] ^= static_cast<std::uint8_t>(1U << bit % 8);
            ASSERT_EQ(feed(receiver, damaged), Bytes{kNak}) << bit;
        }
        EXPECT_EQ(units.journal.violations().size(), good.size() * 8 - 8);
    }
}

TEST(Units, ComplainOfWhatDoesNotBelongToATransfer) {
    struct Case {
        unsigned packetsBefore;  ///< of a download
        Bytes bytes;
        Bytes answer;
        std::vector<std::string> complaints;
    };
    const Case downloads[] = {
        {3, packet(5), {}, {"packet number 5 after 3 blocks"}},
        {0, packet(0), {}, {"packet number 0 after 0 blocks"}},
        {3, packet(2), {}, {"packet number 2 after 3 blocks"}},
        {1920, packet(1921), {}, {"packet number 129 after 1920 blocks"}},
        {5, packet(5), {kAck}, {"packet 5 sent again without reason"}},
        {1, {kStx}, {}, {"byte between packets: 02"}},
        {2, {kCan, kSoh}, {}, {"a single CAN"}},
        {2, {kCan}, {}, {"a single CAN"}},
        {2, {kSoh, 3, 0xFC, 1}, {}, {"packet broken off after 4 bytes -> NAK"}},
        {0, {kEot}, {kNak}, {"EOT after 0 blocks -> NAK"}},
        {1919, {kEot}, {kNak}, {"EOT after 1919 blocks -> NAK"}},
        {0, {kCan, kCan}, {}, {}},
        {7, {kSoh, 8, 0xF7, 1, kCan, kCan}, {}, {}},
    };
    for (const Case& c : downloads) {
        SCOPED_TRACE(std::to_string(c.packetsBefore) + " packets, then " + hexDump(c.bytes).substr(0, 20));
        Transfer units;
        for (unsigned number = 1; number <= c.packetsBefore; ++number)
            ASSERT_EQ(feed(units.download, packet(number)), Bytes{kAck}) << number;
        EXPECT_EQ(feed(units.download, c.bytes), c.answer);
        if (const auto deadline = units.download.deadline())
            units.download.timeout(*deadline);
        EXPECT_EQ(units.journal.violations(), c.complaints);
        EXPECT_EQ(units.download.over(), c.complaints.empty());
    }
    const std::pair<Bytes, std::vector<std::string>> uploads[] = {
        {{kNak, kAck, kNak, kAck}, {}},
        {{kNak, kAck, kAck}, {"ACK of the first EOT"}},
        {{kNak, kAck, kNak, kNak}, {"NAK of a later EOT than the first"}},
        {{kNak, kCan, kAck}, {"a single CAN"}},
        {{kNak, 'x'}, {"byte that does not answer a block: 78"}},
    };
    for (const auto& [bytes, complaints] : uploads) {
        Transfer units;
        feed(units.upload, bytes);
        EXPECT_EQ(units.journal.violations(), complaints) << hexDump(bytes);
    }
}

}  // namespace units::test
