#pragma once

#include <fstream>
#include <sstream>
#include <string>

namespace units::test {

/// The content of a file; empty if it cannot be read.
inline std::string textOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

}  // namespace units::test
