/// Bytes and their hexadecimal notation.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace units {

using Bytes = std::vector<std::uint8_t>;

/// The characters of a text as bytes.
Bytes bytesOf(std::string_view text);

/// Bytes as upper-case hexadecimal pairs, separated by spaces: "02 30 37".
std::string hexDump(std::span<const std::uint8_t> bytes);

/// The lowest `digits` hexadecimal digits of a number, upper case, with leading zeros.
std::string hexNumber(unsigned value, unsigned digits);

/// Reads hexadecimal pairs without separators; nothing if the text is anything else.
std::optional<Bytes> parseHex(std::string_view text);

/// Printable characters as they are, all others as \xNN.
std::string printable(std::string_view text);

}  // namespace units
