#include "transfer/xmodem_packet.h"

#include <numeric>

std::uint16_t fncCrc16(const QByteArray& bytes, qsizetype start, qsizetype length) {
    unsigned crc = 0;
    for (qsizetype i = start; i < start + length; ++i) {
        crc ^= static_cast<unsigned>(static_cast<unsigned char>(bytes[i])) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000) != 0 ? (crc << 1) ^ 0x1021 : crc << 1;
    }
    return static_cast<std::uint16_t>(crc);
}

static char checksum(const QByteArray& bytes) {
    return std::accumulate(bytes.begin(), bytes.end(), char{0},
                           [](char sum, char byte) { return static_cast<char>(sum + byte); });
}

QByteArray buildPacket(int number, const QByteArray& data, PacketCheck check) {
    QByteArray packet;
    packet.reserve(kCrcPacketSize);
    packet += kSoh;
    packet += static_cast<char>(number);
    packet += static_cast<char>(255 - number);
    packet += data;
    if (check == PacketCheck::checksum)
        return packet += checksum(packet);
    const std::uint16_t crc = fncCrc16(packet, kBlockHeader, kBlockSize);
    packet += static_cast<char>(crc >> 8);
    return packet += static_cast<char>(crc & 0xFF);
}
