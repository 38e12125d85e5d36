#pragma once

#include <cstdint>

namespace units {

inline constexpr std::uint8_t kSoh = 0x01;
inline constexpr std::uint8_t kStx = 0x02;
inline constexpr std::uint8_t kEtx = 0x03;
inline constexpr std::uint8_t kEot = 0x04;
inline constexpr std::uint8_t kAck = 0x06;
inline constexpr std::uint8_t kNak = 0x15;
inline constexpr std::uint8_t kCan = 0x18;

/// Asks the sender for packets with a CRC; a NAK in its place asks for the one-byte sum.
inline constexpr std::uint8_t kCrcStart = 'C';

}  // namespace units
