#include "simulator/image.h"

#include <gtest/gtest.h>
#include <set>
#include <unistd.h>

namespace units {
namespace {

TEST(Image, HasTheInformationBlockAndEveryByteValue) {
    const Bytes image = makeImage("SV-AMP", 0x30D4, 7);
    ASSERT_EQ(image.size(), 245760U);
    EXPECT_EQ(image[0x3BF05], 0xD4);
    EXPECT_EQ(image[0x3BF06], 0x30);
    EXPECT_EQ(std::string(image.begin() + 0x3BF10, image.begin() + 0x3BF17), std::string("SV-AMP\0", 7));
    EXPECT_EQ(std::set<std::uint8_t>(image.begin(), image.end()).size(), 256U);
    EXPECT_EQ(imageVersion(image), 12500);
    EXPECT_EQ(imageTypeKey(image), "SV-AMP");
}

TEST(Image, FollowsFromItsArguments) {
    EXPECT_EQ(makeImage("A", 1, 1), makeImage("A", 1, 1));
    EXPECT_NE(makeImage("A", 1, 1), makeImage("A", 1, 2));
    EXPECT_EQ(imageTypeKey(makeImage("", 1, 1)), "");
    EXPECT_EQ(imageTypeKey(makeImage("0123456789ABCDEF", 1, 1)), "0123456789ABCDEF");
    EXPECT_THROW(makeImage("0123456789ABCDEFG", 1, 1), std::invalid_argument);
}

TEST(Image, FilesMustHaveTheSize) {
    const std::string path = ::testing::TempDir() + "units_image_" + std::to_string(getpid());
    saveImage(path, makeImage("A", 1, 1));
    EXPECT_EQ(loadImage(path), makeImage("A", 1, 1));
    saveImage(path, Bytes(100));
    EXPECT_THROW(loadImage(path), std::runtime_error);
    std::remove(path.c_str());
    EXPECT_THROW(loadImage(path), std::runtime_error);
    EXPECT_THROW(saveImage("/nonexistent/image", Bytes(1)), std::runtime_error);
}

}  // namespace
}  // namespace units
