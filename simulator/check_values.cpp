#include "simulator/check_values.h"

#include <array>

namespace units {

namespace {

constexpr std::uint16_t kPolynomial = 0x1021;

constexpr std::array<std::uint16_t, 256> makeCrcTable() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned index = 0; index < table.size(); ++index) {
        unsigned crc = index << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000U) != 0 ? (crc << 1) ^ kPolynomial : crc << 1;
        table[index] = static_cast<std::uint16_t>(crc);
    }
    return table;
}

constexpr std::array<std::uint16_t, 256> kCrcTable = makeCrcTable();

}  // namespace

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
    std::uint16_t crc = 0;
    for (const std::uint8_t byte : bytes)
        crc = static_cast<std::uint16_t>((crc << 8) ^ kCrcTable[(crc >> 8) ^ byte]);
    return crc;
}

}  // namespace units
