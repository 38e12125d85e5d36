#include "ports/output.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace ports {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

/// Control, invisible and direction characters, and code points that are not characters.
// clang-format off
constexpr Range kNotShown[] = {
    {0, 0x1F}, {0x7F, 0x9F}, {0xAD, 0xAD}, {0x61C, 0x61C}, {0x180E, 0x180E}, {0x200B, 0x200F},
    {0x2028, 0x202E}, {0x2060, 0x206F}, {0xD800, 0xDFFF}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE0FFF},
    {0x110000, ~char32_t{0}},
};
// clang-format on

/// The smallest character of each UTF-8 length; below it, the encoding is overlong.
constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};

bool isShown(char32_t character) {
    return std::none_of(std::begin(kNotShown), std::end(kNotShown), [character](const Range& range) {
        return character >= range.first && character <= range.last;
    });
}

/// Length of the UTF-8 sequence with this first byte; 0: not a first byte.
std::size_t lengthFor(unsigned char first) {
    if (first < 0x80)
        return 1;
    if (first < 0xC0 || first > 0xF7)
        return 0;
    return first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

/// Length of the character at the beginning of `text`; 0: not valid, or to be escaped.
std::size_t shownLength(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    const std::size_t length = lengthFor(first);
    if (length == 0 || length > text.size())
        return 0;
    char32_t character = length == 1 ? first : first & (0x7FU >> length);
    for (const char byte : text.substr(1, length - 1)) {
        const auto next = static_cast<unsigned char>(byte);
        if ((next & 0xC0U) != 0x80)
            return 0;
        character = character << 6U | (next & 0x3FU);
    }
    return character >= kSmallest[length] && isShown(character) ? length : 0;
}

}  // namespace

Output& Output::operator<<(const std::string& text) {
    constexpr char kDigits[] = "0123456789abcdef";
    for (std::string_view rest = text; !rest.empty();) {
        const std::size_t length = shownLength(rest);
        const auto byte = static_cast<unsigned char>(rest[0]);
        if (length > 0)
            stream_ << rest.substr(0, length);
        else
            stream_ << "\\x" << kDigits[byte / 16] << kDigits[byte % 16];
        rest.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return *this;
}

Output& Output::operator<<(char own) {
    stream_ << own;
    return *this;
}

Output& Output::operator<<(const Text& own) {
    stream_ << said(own);
    return *this;
}

}  // namespace ports
