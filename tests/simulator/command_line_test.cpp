#include "simulator/command_line.h"

#include "simulator/image.h"

#include <gtest/gtest.h>

namespace units {
namespace {

CommandLine parse(const std::vector<std::string>& arguments) { return parseCommandLine(arguments); }

TEST(CommandLine, ReadsOptions) {
    const CommandLine line =
        parse({"--rate", "38400", "--fault", "nak@packet5", "--fault", "lost@eot", "--kind", "0x0B", "--line-state",
               "hostile", "--stale", "00ff", "--answer-latency", "16", "--amplifier-check", "sum"});
    EXPECT_EQ(line.task, CommandLine::Task::simulate);
    EXPECT_EQ(line.options.rate, 38400U);
    EXPECT_EQ(line.options.faults, (std::vector<std::string>{"nak@packet5", "lost@eot"}));
    EXPECT_EQ(line.options.kind, 0x0B);
    EXPECT_EQ(line.options.lineState, LineState::hostile);
    EXPECT_EQ(line.options.stale, (Bytes{0x00, 0xFF}));
    EXPECT_EQ(line.options.answerLatency, std::chrono::milliseconds(16));
    EXPECT_EQ(line.options.amplifierCheck, CheckMode::sum);
    EXPECT_EQ(parse({"--make-image", "f", "--type-key", "K", "--version", "7"}).task, CommandLine::Task::makeImage);
    EXPECT_EQ(parse({"--help"}).task, CommandLine::Task::help);
}

TEST(CommandLine, RefusesNonsense) {
    const std::vector<std::string> cases[] = {{"--nonsense"},
                                              {"stray"},
                                              {"--rate"},
                                              {"--rate", "fast"},
                                              {"--rate", "-1"},
                                              {"--sensors", "100"},
                                              {"--upload-blocks", "0"},
                                              {"--upload-blocks", "1921"},
                                              {"--line-state", "odd"},
                                              {"--stale", "0"},
                                              {"--fault", "nak@x"},
                                              {"--type-number", "65536"},
                                              {"--amplifier-check", ""},
                                              {"--expect", "file"}};
    for (const auto& arguments : cases)
        EXPECT_THROW(parse(arguments), std::invalid_argument) << arguments.front();
    EXPECT_THROW(parse({"--firmware-amplifier", "/nonexistent"}), std::runtime_error);
}

}  // namespace
}  // namespace units
