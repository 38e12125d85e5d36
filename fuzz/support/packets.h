/// What a packet of an image must be on the wire, worked out apart from the program.
#pragma once

#include "simulator/bytes.h"
#include "simulator/wire.h"

#include <QByteArray>

/// Block `number`, from 1, of `image`, with a CRC or a sum.
inline QByteArray packetOf(int number, const QByteArray& image, bool hasCrc) {
    const QByteArray data = image.mid((number - 1) * 128, 128);
    const QByteArray packet = QByteArray(1, '\x01') + char(number) + char(255 - number % 256) + data;
    const units::Bytes bytes(data.begin(), data.end());
    const unsigned crc = units::crc16(bytes);
    return hasCrc ? packet + char(crc >> 8) + char(crc & 0xFF) : packet + char(units::sum8(bytes));
}
