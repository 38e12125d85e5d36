#pragma once

#include <cstdint>
#include <span>

namespace units {

/// Check byte of a command frame: exclusive or of the bytes given.
std::uint8_t blockCheck(std::span<const std::uint8_t> bytes);

/// Sum of the bytes modulo 256, as in a checksum packet.
std::uint8_t sum8(std::span<const std::uint8_t> bytes);

/// CRC-16 with polynomial 0x1021, initial value 0, not reflected.
std::uint16_t crc16(std::span<const std::uint8_t> bytes);

}  // namespace units
