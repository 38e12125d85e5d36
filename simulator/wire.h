/// Control bytes and check values on the wire.
#pragma once

#include <cstdint>
#include <span>

namespace units {

inline constexpr std::uint8_t kSoh = 0x01;
inline constexpr std::uint8_t kStx = 0x02;
inline constexpr std::uint8_t kEtx = 0x03;
inline constexpr std::uint8_t kEot = 0x04;
inline constexpr std::uint8_t kAck = 0x06;
inline constexpr std::uint8_t kNak = 0x15;
inline constexpr std::uint8_t kCan = 0x18;

/// Asks the sender for packets with a CRC; NAK instead asks for the 8-bit checksum.
inline constexpr std::uint8_t kCrcStart = 'C';

/// Check byte of a command frame: XOR of the bytes.
std::uint8_t blockCheck(std::span<const std::uint8_t> bytes);

/// Sum of the bytes modulo 256, as in a checksum packet.
std::uint8_t sum8(std::span<const std::uint8_t> bytes);

/// CRC-16 with polynomial 0x1021, initial value 0, not reflected.
std::uint16_t crc16(std::span<const std::uint8_t> bytes);

}  // namespace units
