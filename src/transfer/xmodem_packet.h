/// What XMODEM puts on the wire: control bytes and packets.
///
/// Pure: no port, no clock, no window.
#pragma once

#include <QByteArray>

#include <cstdint>

inline constexpr char kSoh = 0x01;
inline constexpr char kEot = 0x04;
inline constexpr char kAck = 0x06;
inline constexpr char kNak = 0x15;
inline constexpr char kCan = 0x18;
inline constexpr char kCrcStart = 'C';

/// Data bytes of a packet.
inline constexpr qsizetype kBlockSize = 128;
/// Bytes before them: SOH, block number, its complement.
inline constexpr qsizetype kBlockHeader = 3;
/// Bytes of a complete packet, by its check.
inline constexpr qsizetype kChecksumPacketSize = kBlockHeader + kBlockSize + 1;
inline constexpr qsizetype kCrcPacketSize = kBlockHeader + kBlockSize + 2;
static_assert(kChecksumPacketSize == 132 && kCrcPacketSize == 133, "as XMODEM has it on the wire");

/// How a packet is protected; the receiver chooses.
enum class PacketCheck { checksum, crc };

/// CRC-16/XMODEM of `length` bytes from index `start`: polynomial 0x1021, initial value 0, most significant bit first.
std::uint16_t fncCrc16(const QByteArray& bytes, qsizetype start, qsizetype length);

/// The packet with `data` (kBlockSize bytes) as block `number` modulo 256: 133 bytes with the CRC, high byte first, or
/// 132 with the sum of all bytes before it.
QByteArray buildPacket(int number, const QByteArray& data, PacketCheck check);
