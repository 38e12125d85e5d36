#include "simulator/wire.h"

namespace units {

std::uint8_t blockCheck(std::span<const std::uint8_t> bytes) {
    std::uint8_t check = 0;
    for (const std::uint8_t byte : bytes)
        check ^= byte;
    return check;
}

std::uint8_t sum8(std::span<const std::uint8_t> bytes) {
    std::uint8_t sum = 0;
    for (const std::uint8_t byte : bytes)
        sum = static_cast<std::uint8_t>(sum + byte);
    return sum;
}

std::uint16_t crc16(std::span<const std::uint8_t> bytes) {
    constexpr unsigned kPolynomial = 0x1021;
    unsigned crc = 0;
    for (const std::uint8_t byte : bytes) {
        crc ^= static_cast<unsigned>(byte) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000U) != 0 ? (crc << 1) ^ kPolynomial : crc << 1;
    }
    return static_cast<std::uint16_t>(crc);
}

}  // namespace units
