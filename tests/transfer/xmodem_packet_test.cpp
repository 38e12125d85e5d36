#include "transfer/xmodem_packet.h"

#include "support/print.h"

#include <gtest/gtest.h>

TEST(XmodemPacket, CrcIsThatOfXmodem) {
    EXPECT_EQ(fncCrc16("123456789", 0, 9), 0x31C3);
    EXPECT_EQ(fncCrc16("xx123456789x", 2, 9), 0x31C3);
    EXPECT_EQ(fncCrc16(QByteArray(128, '\xff'), 0, 128), 0xEDA9) << "as Python's binascii.crc_hqx has it";
}

TEST(XmodemPacket, CarriesNumberComplementDataAndCheck) {
    QByteArray data(128, '\0');
    data[0] = '\x31';
    data[127] = '\xff';
    const QByteArray summed = buildPacket(1, data, PacketCheck::checksum);
    EXPECT_EQ(summed, QByteArray::fromHex("0101fe") + data + '\x30');
    const QByteArray crc = buildPacket(1, QByteArray("123456789").leftJustified(128, '\0'), PacketCheck::crc);
    ASSERT_EQ(crc.size(), 133);
    EXPECT_EQ(fncCrc16(crc, 3, 130), 0) << "a packet's CRC over data and CRC is zero, high byte first";
    struct {
        int block;
        const char* header;
    } const wraps[] = {{255, "01ff00"}, {256, "0100ff"}, {257, "0101fe"}, {1920, "01807f"}};
    for (const auto& c : wraps)
        EXPECT_EQ(buildPacket(c.block, data, PacketCheck::checksum).left(3).toHex(), c.header);
}
