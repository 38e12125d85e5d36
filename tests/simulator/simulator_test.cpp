#include "simulator/block_sender.h"
#include "simulator/command_machine.h"
#include "simulator/image.h"
#include "simulator/packet_receiver.h"
#include "simulator/wire.h"

#include <gtest/gtest.h>

namespace units::test {

using Texts = std::vector<std::string>;

/// What a machine sends for these bytes, on a line without delays.
static std::string feed(Machine& machine, const std::string& bytes) {
    std::string answers;
    for (const std::uint8_t byte : bytesOf(bytes)) {
        const Script script = machine.take(byte, Time{0});
        if (!script.steps.empty())
            machine.sent(Time{0});
        const Bytes sent = bytesOf(script);
        answers.append(sent.begin(), sent.end());
    }
    return answers;
}

static void beSilent(Machine& machine) {
    if (const auto deadline = machine.deadline())
        machine.timeout(*deadline);
}

/// A request with this text and a correct check byte.
static std::string framed(const std::string& text) {
    return '\x02' + text + '\x03' + char(blockCheck(bytesOf(text + '\x03')));
}

static std::string request(const std::string& command) { return framed("00000" + command); }

/// A well-formed packet with this number, which need not be in range.
static std::string packet(unsigned number) {
    const std::string payload(kBlockSize, char(number * 7));
    const unsigned crc = crc16(bytesOf(payload));
    return '\x01' + std::string{char(number), char(~number)} + payload + std::string{char(crc >> 8), char(crc)};
}

struct Units {
    /// @return the text of the reply, from the node number to the response code
    std::string ask(const std::string& command) {
        const std::string reply = feed(commands, request(command));
        if (commands.over())
            commands.begin(Time{0});
        return reply.empty() ? reply : reply.substr(1, 14);
    }

    Journal journal;
    FaultBook faults{{"nak@eot"}};
    Devices devices{{}};
    CommandMachine commands{devices, faults, journal, Timing{}};
    PacketReceiver download{CheckMode::crc, false, faults, journal, Timing{}, [](const Bytes&, Time) {}};
    BlockSender upload{Bytes(kImageSize), 1, false, faults, journal, Timing{}};
};

static std::string damaged(std::string bytes) {
    bytes.back() = char(~bytes.back());
    return bytes;
}

TEST(Units, RefuseUnknownCommands) {
    for (const std::string command :
         {"0502", "05011", "06011", "0101D30001000001", "0101D40002000001", "0101D40001000002", "0101D4000100000",
          "300550020000", "300550010C00", "300551010000", "300555010000", "30055001000", "3005500100000"}) {
        Units units;
        EXPECT_EQ(units.ask(command), "00000F" + command.substr(0, 4) + "1001");
        EXPECT_EQ(units.journal.violations(), Texts{"unknown command '" + command + "'"});
    }
}

TEST(Units, EnforceTheOrderOfOperations) {
    // Open 0, download 1, upload 2, finish 3, end of transfer 4, and "!" after a refused one.
    for (const std::string order :
         {"0143", "00143343", "243", "04301", "1!", "01431!", "2431!", "4!", "3!", "03!", "014303!"}) {
        Units units;
        std::string shown;
        for (const char digit : order) {
            if (digit == '!')
                continue;
            const char* tail = digit == '1' || digit == '2' ? "010C00" : "010000";
            shown += digit;
            if (units.ask(std::string("30055") + digit + tail).ends_with("1003"))
                shown += '!';
        }
        EXPECT_EQ(shown, order);
        EXPECT_EQ(units.journal.violations().empty(), !shown.ends_with('!')) << order;
    }
}

TEST(Units, ReportViolationsDuringADownload) {
    const Texts notTwice{"packet after 0 blocks: number and complement do not match: 01 01 -> NAK"};
    const std::tuple<unsigned, std::string, std::string, Texts> cases[] = {
        // packets before, bytes, answer, violations
        {3, packet(5), "", {"packet number 5 after 3 blocks"}},
        {1920, packet(1921), "", {"packet number 129 after 1920 blocks"}},
        {5, packet(5), "\x06", {"packet 5 sent again without reason"}},
        {1, "\x02", "", {"byte between packets: 02"}},
        {0, damaged(packet(1)), "\x15", {"packet after 0 blocks: check value D763 instead of D79C -> NAK"}},
        {0, "\1\1\1" + packet(1).substr(3), "\x15", notTwice},
        {2, "\x18\x01", "", {"a single CAN"}},
        {2, "\x01\x03\xFC\x01", "", {"packet incomplete after 4 bytes -> NAK"}},
        {1919, "\x04", "\x15", {"EOT after 1919 blocks -> NAK"}},
        {0, "\x18\x18", "", {}}};
    for (const auto& [packets, bytes, answer, complaints] : cases) {
        SCOPED_TRACE(std::to_string(packets) + " packets, then " + hexDump(bytesOf(bytes)).substr(0, 20));
        Units units;
        for (unsigned number = 1; number <= packets; ++number)
            ASSERT_EQ(feed(units.download, packet(number)), "\x06") << number;
        EXPECT_EQ(feed(units.download, bytes), answer);
        beSilent(units.download);
        EXPECT_EQ(units.journal.violations(), complaints);
        EXPECT_EQ(units.download.over(), complaints.empty());
    }
}

TEST(Units, ReportViolationsDuringAnUpload) {
    const std::pair<const char*, Texts> cases[] = {{"\x15\x06\x15\x06", {}},
                                                   {"\x15\x06\x06", {"ACK of the first EOT"}},
                                                   {"\x15\x06\x15\x15", {"NAK of an EOT after the first"}},
                                                   {"\x15x", {"unexpected answer to a block: 78"}}};
    for (const auto& [bytes, complaints] : cases) {
        Units units;
        feed(units.upload, bytes);
        EXPECT_EQ(units.journal.violations(), complaints);
    }
}

}  // namespace units::test
