/// Output to the user's terminal. Everything that this program writes goes through here.
#pragma once

#include "ports/language.h"

#include <ostream>
#include <string>

namespace ports {

/// Writes text that may contain untrusted names: of links, USB devices, processes and paths.
///
/// Control characters (line breaks too), invisible ones such as direction marks, and bytes that are not UTF-8 are
/// escaped as \x1b, so that no name can control the terminal.
class Output {
public:
    explicit Output(std::ostream& stream) : stream_(stream) {}

    Output& operator<<(const std::string& text);

    /// Unescaped, for line breaks of our own.
    Output& operator<<(char own);

    /// A text of our own, unescaped, in the user's language.
    Output& operator<<(const Text& own);

private:
    std::ostream& stream_;
};

}  // namespace ports
