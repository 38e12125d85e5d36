/// What goes to the user's terminal. Everything that this program writes goes through here.
#pragma once

#include "ports/language.h"

#include <ostream>
#include <string>

namespace ports {

/// Writes text in which names of others may stand: links, USB strings, processes, paths.
///
/// What a terminal would obey instead of showing it is written as \x1b, byte by byte: control characters, line breaks
/// too, invisible characters, such as those that turn the direction of writing, and what is not UTF-8.
class Output {
public:
    explicit Output(std::ostream& stream) : stream_(stream) {}

    Output& operator<<(const std::string& text);

    /// As it is: a line break of our own.
    Output& operator<<(char own);

    /// As it is, with its line breaks, in the user's language.
    Output& operator<<(const Text& own);

private:
    std::ostream& stream_;
};

}  // namespace ports
