#include "app/numbers.h"

#include "system/runtime_failure.h"

#include <gtest/gtest.h>

#include <cmath>

TEST(Numbers, AreReadFromThePrefixAndRoundedHalfToEven) {
    const std::pair<const char*, double> cases[] = {
        {"1 2 kg", 12}, {"-1.5e2x", -150}, {"+.5", .5}, {"3.", 3}, {"&H1F", 31}, {"&hffzz", 255}, {"abc", 0},  {"", 0},
        {"e5", 0},      {"1e", 1},         {"&H", 0},   {"-", 0},  {"1D2", 100}, {"0x10", 0},     {"１２", 0}, {".", 0},
    };
    for (const auto& [text, value] : cases)
        EXPECT_EQ(leadingNumber(text), value) << text;
    EXPECT_EQ(toInt16(2.5), 2);
    EXPECT_EQ(toInt16(3.5), 4);
    EXPECT_THROW(toInt16(32767.5), RuntimeFailure);
    EXPECT_THROW(toInt32(std::nan("")), RuntimeFailure);
}
