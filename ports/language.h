/// The program's texts in the user's language.
#pragma once

#include <string>
#include <vector>

namespace ports {

/// One text in both languages; %1, %2, … are replaced by the inserts.
struct Text {
    const char* english;
    const char* japanese;
};

/// The text in the language of the locale (LC_ALL, LC_MESSAGES or LANG: Japanese, else English), UTF-8.
std::string said(const Text& text, const std::vector<std::string>& inserts = {});

}  // namespace ports
