#include "ports/language.h"

#include <cstdlib>
#include <string_view>

namespace ports {

/// Reads the variables itself, since the C library knows only installed locales.
static bool isJapanese() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* value = std::getenv(variable); value != nullptr && *value != '\0')
            return std::string_view(value).starts_with("ja");
    return false;
}

std::string said(const Text& text, const std::vector<std::string>& inserts) {
    const std::string_view pattern = isJapanese() ? text.japanese : text.english;
    std::string result;
    for (std::size_t i = 0; i < pattern.size(); ++i)
        if (pattern[i] == '%')
            result += inserts.at(static_cast<std::size_t>(pattern[++i] - '1'));
        else
            result += pattern[i];
    return result;
}

}  // namespace ports
