/// What a packet of an image must be on the wire, worked out apart from the program.
#pragma once

#include <QByteArray>

/// Whether `packet` is block `number` (1 to 1920) of `image`, with either check, or EOT when `number` is 1921.
inline bool isPacket(const QByteArray& packet, int number, const QByteArray& image) {
    if (number > 1'920)
        return packet == QByteArray(1, '\x04');
    const QByteArray data = image.mid((number - 1) * 128, 128);
    QByteArray expected = QByteArray(1, '\x01') + char(number) + char(255 - number % 256) + data;
    unsigned sum = 0;
    unsigned crc = 0;
    for (const char byte : data) {
        sum += static_cast<unsigned char>(byte);
        const unsigned mixed = (crc >> 8) ^ static_cast<unsigned char>(byte);
        unsigned fold = mixed ^ (mixed >> 4);
        crc = ((crc << 8) ^ fold ^ (fold << 5) ^ (fold << 12)) & 0xFFFF;
    }
    return packet == expected + char(sum) || packet == expected + char(crc >> 8) + char(crc & 0xFF);
}
