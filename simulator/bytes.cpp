#include "simulator/bytes.h"

#include <charconv>

namespace units {

namespace {

constexpr std::string_view kDigits = "0123456789ABCDEF";

}  // namespace

Bytes bytesOf(std::string_view text) { return Bytes(text.begin(), text.end()); }

std::string hexDump(std::span<const std::uint8_t> bytes) {
    std::string text;
    text.reserve(bytes.size() * 3);
    for (const std::uint8_t byte : bytes) {
        if (!text.empty())
            text += ' ';
        text += hexNumber(byte, 2);
    }
    return text;
}

std::string hexNumber(unsigned value, unsigned digits) {
    std::string text(digits, '0');
    for (std::size_t left = digits; left > 0; --left, value /= 16)
        text[left - 1] = kDigits[value % 16];
    return text;
}

std::optional<Bytes> parseHex(std::string_view text) {
    if (text.size() % 2 != 0)
        return std::nullopt;
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += 2) {
        std::uint8_t byte = 0;
        const char* end = text.data() + i + 2;
        const auto [stop, error] = std::from_chars(text.data() + i, end, byte, 16);
        if (error != std::errc{} || stop != end)
            return std::nullopt;
        bytes.push_back(byte);
    }
    return bytes;
}

std::string printable(std::string_view text) {
    std::string shown;
    for (const char character : text) {
        if (character >= ' ' && character <= '~')
            shown += character;
        else
            shown += "\\x" + hexNumber(static_cast<std::uint8_t>(character), 2);
    }
    return shown;
}

}  // namespace units
