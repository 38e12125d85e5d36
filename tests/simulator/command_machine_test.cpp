#include "simulator/command_machine.h"

#include "simulator/control_bytes.h"
#include "simulator/image.h"
#include "tests/simulator/frames.h"

#include <gtest/gtest.h>

namespace units {
namespace {

class Commands {
public:
    explicit Commands(const Options& options = {})
        : devices(options), faults_(options.faults), machine(devices, faults_, journal, Timing{}) {}

    Bytes feed(std::span<const std::uint8_t> bytes) { return test::feed(machine, bytes, now); }

    /// The reply to a command without its frame, or what comes instead.
    std::string ask(std::string_view command) {
        const Bytes reply = feed(test::requestFrame(command));
        if (machine.over())
            machine.begin(now);
        return reply.size() < 7 ? std::string() : std::string(reply.begin() + 5, reply.end() - 2);
    }

    Devices devices;
    Journal journal;
    Time now{0};

private:
    FaultBook faults_;

public:
    CommandMachine machine;
};

TEST(CommandMachine, RepliesByteForByte) {
    Commands commands;
    const Bytes reply = commands.feed(parseHex("023030303030303630310334").value());
    EXPECT_EQ(hexDump(reply), "02 30 30 30 30 30 30 30 36 30 31 30 30 30 30 30 30 30 31 03 05");
}

TEST(CommandMachine, TellsWhatTheUnitsAre) {
    Commands standard;
    EXPECT_EQ(standard.ask("0501"), "0005010000SV-IFU16        V1.004");
    EXPECT_EQ(standard.ask("0601"), "00060100000001");
    EXPECT_EQ(standard.ask("0101D40001000001"), "0001010000000030D4");
    EXPECT_EQ(standard.ask("0101D50001000001"), "00010100000000000A");

    Options options;
    options.model = "OTHER";
    options.interfaceVersion = "2.5";
    options.status = "01";
    options.sensors = 12;
    options.typeNumber = 13001;
    options.kind = 0x0B;
    Commands other(options);
    EXPECT_EQ(other.ask("0501"), "0005010000OTHER           V2.5");
    EXPECT_EQ(other.ask("0601"), "00060100000112");
    EXPECT_EQ(other.ask("0101D40001000001"), "0001010000000032C9");
    EXPECT_EQ(other.ask("0101D50001000001"), "00010100000000000B");
    other.devices.install(Unit::amplifier, makeImage("SV-AMP", 12600, 1));
    other.devices.install(Unit::interface, makeImage("SV-IFU", 1012, 1));
    EXPECT_EQ(other.ask("0101D40001000001"), "000101000000003138");
    EXPECT_EQ(other.ask("0501"), "0005010000OTHER           V1.012");
}

TEST(CommandMachine, RefusesUnknownCommands) {
    for (const char* command :
         {"0502", "050", "05011", "0101D30001000001", "0101D40002000001", "0101D40001000002", "0101D4000100000",
          "300550020000", "300550010C00", "300551010000", "300555010000", "30055001000", "3005500100000"}) {
        Commands commands;
        const std::string reply = commands.ask(command);
        EXPECT_EQ(reply, std::string_view(command).size() < 4 ? "" : "0F" + std::string(command, 4) + "1001")
            << command;
        EXPECT_EQ(commands.journal.violations().size(), 1U) << command;
    }
}

TEST(CommandMachine, KeepsTheOrderOfOperations) {
    const std::string open = "300550010000";
    const std::string download = "300551010C00";
    const std::string upload = "300552010C00";
    const std::string finish = "300553010000";
    const std::string endTransfer = "300554010000";
    struct Case {
        std::vector<std::string> faults;
        std::vector<std::string> commands;
        std::size_t refused;  // index of the first command refused for its order; the number of commands: none
    };
    const Case cases[] = {
        {{}, {open, download, endTransfer, finish}, 4},
        {{}, {open, open, download, endTransfer, finish, finish, endTransfer, finish}, 8},
        {{}, {upload, endTransfer, finish}, 3},
        {{}, {open, endTransfer, finish, open, download}, 5},
        {{}, {download}, 0},
        {{}, {open, "300551000C00"}, 1},
        {{}, {open, download, endTransfer, finish, download}, 4},
        {{}, {endTransfer}, 0},
        {{}, {finish}, 0},
        {{}, {open, finish}, 1},
        {{}, {open, download, endTransfer, finish, open, finish}, 5},
        {{}, {upload, endTransfer, finish, download}, 3},
        {{"response:1001@300550"}, {open, endTransfer, finish}, 3},
        {{"response:1001@300550"}, {open, download}, 1},
        {{"silence@300550"}, {open, endTransfer, finish}, 3},
        {{"endcode:10@300551"}, {open, download, endTransfer, finish}, 4},
        {{"lost@300550"}, {open, download}, 2},
    };
    for (const Case& order : cases) {
        Options options;
        options.faults = order.faults;
        Commands commands(options);
        std::size_t refused = 0;
        while (refused < order.commands.size() &&
               commands.ask(order.commands[refused]).find("30051003") == std::string::npos)
            ++refused;
        EXPECT_EQ(refused, order.refused) << ::testing::PrintToString(order.commands);
        EXPECT_EQ(commands.journal.violations().size(), refused < order.commands.size() ? 1U : 0U);
    }
}

TEST(CommandMachine, StartsTransfersUnlessDisobedient) {
    struct Case {
        const char* fault;
        bool started;
        bool unsure;
    };
    const Case cases[] = {{"delay:1@0501", true, false},       {"lost@300552", true, true},
                          {"bcc@300552", true, true},          {"silence@300552", false, false},
                          {"endcode:10@300552", false, false}, {"response:2203@300552", false, false}};
    for (const Case& expected : cases) {
        Options options;
        options.faults = {expected.fault};
        Commands commands(options);
        commands.feed(test::requestFrame("300552000C00"));
        ASSERT_EQ(commands.machine.over(), expected.started) << expected.fault;
        if (!expected.started)
            continue;
        EXPECT_FALSE(commands.machine.transfer()->isDownload);
        EXPECT_EQ(commands.machine.transfer()->unit, Unit::interface);
        EXPECT_EQ(commands.machine.transfer()->unsure, expected.unsure) << expected.fault;
    }
}

TEST(CommandMachine, ShowsFaultsOfReplies) {
    struct Case {
        std::vector<std::string> faults;
        const char* reply;
    };
    const Case cases[] = {
        {{"endcode:11@0601"}, "11060100000001"},
        {{"response:1104@0601"}, "0F06011104"},
        {{"response:1104@0601", "endcode:00@0601"}, "0006011104"},
        {{"data:@0601"}, "0006010000"},
        {{"data:XY@0601"}, "0006010000XY"},
        {{"data:0x0300@0601"}, "0006010000\x03"},
        {{"silence@0601"}, ""},
        {{"lost@0601"}, ""},
    };
    for (const Case& expected : cases) {
        Options options;
        options.faults = expected.faults;
        Commands commands(options);
        const std::string reply = commands.ask("0601");
        EXPECT_EQ(reply.substr(0, reply.find('\0')), expected.reply) << expected.faults[0];
        EXPECT_EQ(commands.ask("0601"), "00060100000001");
        EXPECT_TRUE(commands.journal.violations().empty());
    }
}

TEST(CommandMachine, SwallowsSurplusCancelsOnlyAfterATransfer) {
    const Bytes cancels(8, kCan);
    Commands commands;
    commands.feed(test::requestFrame("300552010C00"));
    commands.machine.begin(commands.now);
    commands.feed(cancels);
    EXPECT_EQ(commands.ask("0601"), "00060100000001");
    EXPECT_TRUE(commands.journal.violations().empty());
    commands.feed(cancels);
    EXPECT_EQ(commands.journal.violations().size(), 1U);
}

TEST(CommandMachine, ReportsARequestThatStops) {
    Commands commands;
    commands.feed(parseHex("0230303030").value());
    test::pass(commands.machine, commands.now);
    EXPECT_EQ(commands.journal.violations().size(), 1U);
    EXPECT_FALSE(commands.machine.deadline());
    EXPECT_EQ(commands.ask("0601"), "00060100000001");
}

TEST(Devices, RefuseOptionsOutOfRange) {
    const auto with = [](auto change) {
        Options options;
        change(options);
        return options;
    };
    const Options wrong[] = {with([](Options& options) { options.model = "12345678901234567"; }),
                             with([](Options& options) { options.interfaceVersion = "1.00000"; }),
                             with([](Options& options) { options.status = "1"; }),
                             with([](Options& options) { options.sensors = 100; }),
                             with([](Options& options) { options.uploadBlocks = 1921; }),
                             with([](Options& options) { options.amplifierFirmware = Bytes(10); })};
    for (const Options& options : wrong)
        EXPECT_THROW(Devices{options}, std::invalid_argument);
}

}  // namespace
}  // namespace units
