#include "simulator/request_parser.h"

#include "tests/simulator/frames.h"

#include <gtest/gtest.h>
#include <random>

namespace units {
namespace {

struct Outcome {
    std::vector<std::string> commands;
    std::vector<std::string> violations;
};

void note(Outcome& outcome, const RequestParser::Result& result) {
    if (result.command)
        outcome.commands.push_back(*result.command);
    if (result.violation)
        outcome.violations.push_back(*result.violation);
}

Outcome parse(std::span<const std::uint8_t> bytes) {
    RequestParser parser;
    Outcome outcome;
    for (const std::uint8_t byte : bytes)
        note(outcome, parser.take(byte));
    note(outcome, parser.silence());
    return outcome;
}

TEST(RequestParser, ReadsAFrameByteForByte) {
    const Bytes frame{0x02, 0x30, 0x30, 0x30, 0x30, 0x30, 0x30, 0x35, 0x30, 0x31, 0x03, 0x37};
    const Outcome outcome = parse(frame);
    EXPECT_EQ(outcome.commands, std::vector<std::string>{"0501"});
    EXPECT_TRUE(outcome.violations.empty());
}

TEST(RequestParser, RefusesEveryBreachOnceAndRecovers) {
    struct Case {
        const char* bytes;
        const char* violation;
    };
    const Case cases[] = {
        {"023030303030303530310338", "check byte"},
        {"0230303030303035303103", "broken off after 11 bytes"},
        {"303030303030353031", "outside a request"},
        {"0606", "outside a request"},
        {"023130303030303530310336", "wrong header"},
        {"023030303130303530310336", "wrong header"},
        {"023030303031303530310336", "wrong header"},
        {"0230303030306134303103", "no command character"},
        {"02303030303030350235303103", "no command character"},
        {"02303030303000", "no command character"},
    };
    for (const Case& breach : cases) {
        const Outcome alone = parse(parseHex(breach.bytes).value());
        EXPECT_TRUE(alone.commands.empty()) << breach.bytes;
        ASSERT_EQ(alone.violations.size(), 1U) << breach.bytes;
        EXPECT_NE(alone.violations[0].find(breach.violation), std::string::npos) << alone.violations[0];
    }
    Bytes bytes = parseHex("55AA").value();
    const Bytes good = test::requestFrame("0601");
    bytes.insert(bytes.end(), good.begin(), good.end());
    const Outcome recovered = parse(bytes);
    EXPECT_EQ(recovered.violations.size(), 1U);
    EXPECT_EQ(recovered.commands, std::vector<std::string>{"0601"});
}

TEST(RequestParser, LimitsTheCommand) {
    EXPECT_EQ(parse(test::requestFrame(std::string(RequestParser::kMaxCommand, 'A'))).commands.size(), 1U);
    EXPECT_NE(parse(test::requestFrame(std::string(RequestParser::kMaxCommand + 1, 'A'))).violations.at(0).find("long"),
              std::string::npos);
}

TEST(RequestParser, AcceptsNoDamagedFrame) {
    const Bytes good = test::requestFrame("300551010C00");
    for (std::size_t position = 0; position < good.size(); ++position) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            Bytes damaged = good;
            damaged[position] ^= static_cast<std::uint8_t>(1U << bit);
            const Outcome outcome = parse(damaged);
            EXPECT_TRUE(outcome.commands.empty()) << position << ' ' << bit;
            EXPECT_FALSE(outcome.violations.empty()) << position << ' ' << bit;
        }
    }
}

TEST(RequestParser, FindsAFrameAfterAnyNoise) {
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        RequestParser parser;
        const auto size = random() % 60;
        for (unsigned i = 0; i < size; ++i)
            EXPECT_FALSE(parser.take(static_cast<std::uint8_t>(random() % 0x40)).command);
        parser.silence();
        Outcome outcome;
        for (const std::uint8_t byte : test::requestFrame("0501"))
            note(outcome, parser.take(byte));
        EXPECT_EQ(outcome.commands.size(), 1U);
    }
}

}  // namespace
}  // namespace units
