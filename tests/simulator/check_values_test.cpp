#include "simulator/check_values.h"

#include "simulator/bytes.h"

#include <gtest/gtest.h>

namespace units {
namespace {

TEST(CheckValues, AgreeWithPublishedAndHandmadeOnes) {
    EXPECT_EQ(crc16(bytesOf("123456789")), 0x31C3);
    EXPECT_EQ(crc16({}), 0);
    EXPECT_EQ(sum8(bytesOf("123456789")), 0xDD);
    EXPECT_EQ(sum8(Bytes{0xFF, 0x02}), 0x01);
    EXPECT_EQ(blockCheck(Bytes{0x30, 0x30, 0x30, 0x30, 0x30, 0x30, 0x35, 0x30, 0x31, 0x03}), 0x37);
}

TEST(Hex, ReadsWhatItWrites) {
    EXPECT_EQ(hexDump(Bytes{0x00, 0x0A, 0xFF}), "00 0A FF");
    EXPECT_EQ(hexNumber(0x30D4, 4), "30D4");
    EXPECT_EQ(parseHex("000aFF"), (Bytes{0x00, 0x0A, 0xFF}));
    EXPECT_EQ(parseHex(""), Bytes{});
    for (const char* wrong : {"0", "0g", "-1", " 1", "0x"})
        EXPECT_FALSE(parseHex(wrong)) << wrong;
}

}  // namespace
}  // namespace units
