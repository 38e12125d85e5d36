#include "simulator/command_machine.h"
#include "tests/simulator/frames.h"

#include <gtest/gtest.h>
#include <sstream>

namespace units::test {

TEST(CheckValues, AgreeWithPublishedAndHandmadeOnes) {
    EXPECT_EQ(crc16(bytesOf("123456789")), 0x31C3);
    EXPECT_EQ(sum8(bytesOf("123456789")), 0xDD);
    EXPECT_EQ(blockCheck(Bytes{0x30, 0x30, 0x30, 0x30, 0x30, 0x30, 0x35, 0x30, 0x31, 0x03}), 0x37);
}

/// The commands and violations in bytes that are followed by silence.
static std::vector<std::string> parse(RequestParser& parser, std::span<const std::uint8_t> bytes) {
    std::vector<std::string> events;
    const auto note = [&events](const RequestParser::Result& result) {
        for (const auto& event : {result.command, result.violation})
            if (event)
                events.push_back(*event);
    };
    for (const std::uint8_t byte : bytes)
        note(parser.take(byte));
    note(parser.silence());
    return events;
}

TEST(RequestParser, TakesOnlyWellFormedRequestsAndRecovers) {
    struct Case {
        const char* bytes;
        const char* event;
    };
    const Case cases[] = {
        {"023030303030303530310337", "0501"},
        {"023030303030303530310338", "check byte 38 instead of 37"},
        {"0230303030303035303103", "request broken off after 11 bytes"},
        {"303030303030353031", "byte outside a request"},
        {"023130303030303530310336", "wrong header"},
        {"023030303031303530310336", "wrong header"},
        {"0230303030306134303103", "byte that is no command character"},
        {"02303030303030350235303103", "byte that is no command character"},
    };
    RequestParser parser;
    for (const Case& expected : cases) {
        const auto events = parse(parser, parseHex(expected.bytes).value());
        ASSERT_EQ(events.size(), 1U) << expected.bytes;
        EXPECT_TRUE(events[0].starts_with(expected.event)) << events[0];
        EXPECT_EQ(parse(parser, requestFrame("0601")), std::vector<std::string>{"0601"}) << expected.bytes;
    }
    const std::string longest(RequestParser::kMaxCommand, 'A');
    EXPECT_EQ(parse(parser, requestFrame(longest)), std::vector<std::string>{longest});
    EXPECT_TRUE(parse(parser, requestFrame(longest + 'A')).at(0).starts_with("request too long"));
}

struct Commands {
    explicit Commands(const Options& options = {})
        : devices(options), faults(options.faults), machine(devices, faults, journal, Timing{}) {}

    Bytes feed(std::span<const std::uint8_t> bytes) { return test::feed(machine, bytes, now); }

    std::string ask(std::string_view command) {
        const Bytes reply = feed(requestFrame(command));
        if (machine.over())
            machine.begin(now);
        return contentOf(reply);
    }

    Devices devices;
    Journal journal;
    Time now{0};
    FaultBook faults;
    CommandMachine machine;
};

TEST(CommandMachine, TellsWhatTheUnitsAre) {
    Commands standard;
    const Bytes reply = standard.feed(parseHex("023030303030303630310334").value());
    EXPECT_EQ(hexDump(reply), "02 30 30 30 30 30 30 30 36 30 31 30 30 30 30 30 30 30 31 03 05");
    EXPECT_EQ(standard.ask("0501"), "0005010000SV-IFU16        V1.004");
    EXPECT_EQ(standard.ask("0101D50001000001"), "00010100000000000A");

    Options options;
    options.status = "01";
    options.sensors = 12;
    options.kind = 0x0B;
    Commands other(options);
    other.devices.install(Unit::interface, makeImage("SV-IFU", 1012, 1));
    EXPECT_EQ(other.ask("0501"), "0005010000SV-IFU16        V1.012");
    EXPECT_EQ(other.ask("0601"), "00060100000112");
    EXPECT_EQ(other.ask("0101D50001000001"), "00010100000000000B");
}

TEST(CommandMachine, RefusesUnknownCommands) {
    for (const std::string command :
         {"0502", "050", "05011", "0101D30001000001", "0101D40002000001", "0101D40001000002", "0101D4000100000",
          "300550020000", "300550010C00", "300551010000", "300555010000", "30055001000", "3005500100000"}) {
        Commands commands;
        EXPECT_EQ(commands.ask(command), command == "050" ? "" : "0F" + command.substr(0, 4) + "1001") << command;
        EXPECT_EQ(commands.journal.violations().size(), 1U) << command;
    }
}

/// Operations by the last digits of their codes: open 0, download 1, upload 2, finish 3, end of transfer 4; "!" stands
/// before one that is refused for its order.
TEST(CommandMachine, KeepsTheOrderOfOperations) {
    const std::pair<std::string, const char*> cases[] = {
        {"lost@0601", "0143 00143343 243 04301 !1 0143!1 243!1 !4 !3 0!3 01430!3"},
        {"response:1001@300550", "0!1 043"},
        {"silence@300550", "0!1 043"},
        {"endcode:10@300551", "0143"},
        {"lost@300550", "01"}};
    for (const auto& [fault, orders] : cases) {
        std::istringstream list(orders);
        for (std::string order; list >> order;) {
            Options options;
            options.faults = {fault};
            Commands commands(options);
            std::string shown;
            for (const char digit : order) {
                if (digit == '!')
                    continue;
                const char* tail = digit == '1' || digit == '2' ? "010C00" : "010000";
                const bool refused = commands.ask(std::string("30055") + digit + tail).ends_with("30051003");
                shown += refused ? std::string("!") + digit : std::string(1, digit);
            }
            EXPECT_EQ(shown, order) << fault;
            EXPECT_EQ(commands.journal.violations().size(), order.find('!') != std::string::npos ? 1U : 0U)
                << fault << order;
        }
    }
}

TEST(CommandMachine, ReportsARequestThatStopsAndCancelsWithoutATransfer) {
    const Bytes cancels(8, kCan);
    Commands commands;
    commands.ask("300552010C00");
    commands.feed(cancels);
    EXPECT_TRUE(commands.journal.violations().empty()) << "what is left of a cancellation";
    commands.ask("0601");
    commands.feed(cancels);
    EXPECT_EQ(commands.journal.violations().size(), 1U);
    commands.feed(parseHex("0230303030").value());
    pass(commands.machine, commands.now);
    EXPECT_EQ(commands.journal.violations().size(), 2U);
}

}  // namespace units::test
