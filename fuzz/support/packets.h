/// What a packet of an image must be on the wire, worked out apart from the program.
#pragma once

#include "simulator/wire.h"

#include <QByteArray>

#include <vector>

/// Whether `packet` is block `number` (1 to 1920) of `image`, with either check, or EOT when `number` is 1921.
inline bool isPacket(const QByteArray& packet, int number, const QByteArray& image) {
    if (number > 1'920)
        return packet == QByteArray(1, '\x04');
    const QByteArray data = image.mid((number - 1) * 128, 128);
    const QByteArray expected = QByteArray(1, '\x01') + char(number) + char(255 - number % 256) + data;
    const std::vector<std::uint8_t> bytes(data.begin(), data.end());
    const unsigned crc = units::crc16(bytes);
    return packet == expected + char(units::sum8(bytes)) || packet == expected + char(crc >> 8) + char(crc & 0xFF);
}
