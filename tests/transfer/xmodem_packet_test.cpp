#include "transfer/xmodem_packet.h"

#include "support/print.h"

#include <gtest/gtest.h>

TEST(XmodemPacket, CarriesNumberComplementDataAndCheck) {
    EXPECT_EQ(fncCrc16("xx123456789x", 2, 9), 0x31C3);
    EXPECT_EQ(fncCrc16(QByteArray(128, '\xff'), 0, 128), 0xEDA9) << "as Python's binascii.crc_hqx has it";
    const QByteArray data = '\x31' + QByteArray(126, '\0') + '\xff';
    EXPECT_EQ(buildPacket(1, data, PacketCheck::checksum), QByteArray::fromHex("0101fe") + data + '\x30');
    const QByteArray ones = buildPacket(256, QByteArray(128, '\xff'), PacketCheck::crc);
    EXPECT_EQ(ones, QByteArray::fromHex("0100ff") + QByteArray(128, '\xff') + QByteArray::fromHex("eda9"));
    EXPECT_EQ(buildPacket(1920, data, PacketCheck::checksum).left(3).toHex(), "01807f");
}
