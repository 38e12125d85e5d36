#include "simulator/command_machine.h"
#include "tests/simulator/frames.h"

#include <gtest/gtest.h>
#include <sstream>

namespace units::test {

struct Commands {
    explicit Commands(const Options& options = {})
        : devices(options), faults(options.faults), machine(devices, faults, journal, Timing{}) {}

    std::string ask(std::string_view command) {
        const Bytes reply = feed(machine, requestFrame(command), now);
        if (machine.over())
            machine.begin(now);
        return reply.empty() ? std::string() : std::string(reply.begin() + 5, reply.end() - 2);
    }

    Devices devices;
    Journal journal;
    Time now{0};
    FaultBook faults;
    CommandMachine machine;
};

TEST(CommandMachine, AnswersToTheByteAndRefusesUnknownCommands) {
    Commands units;
    EXPECT_EQ(hexDump(feed(units.machine, requestFrame("0601"), units.now)),
              "02 30 30 30 30 30 30 30 36 30 31 30 30 30 30 30 30 30 31 03 05");
    for (const std::string command :
         {"0502", "05011", "0101D30001000001", "0101D40002000001", "0101D40001000002", "0101D4000100000",
          "300550020000", "300550010C00", "300551010000", "300555010000", "30055001000", "3005500100000"}) {
        Commands commands;
        EXPECT_EQ(commands.ask(command), "0F" + command.substr(0, 4) + "1001") << command;
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
            EXPECT_EQ(commands.journal.violations().empty(), order.find('!') == std::string::npos) << fault << order;
        }
    }
}

}  // namespace units::test
