/// Log of what happened, one line per event: milliseconds since the start, direction, meaning. Thread-safe.
#pragma once

#include "simulator/options.h"

#include <fstream>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace units {

class Journal {
public:
    /// Writes to the file as well unless the path is empty.
    /// @throws std::runtime_error  it cannot be opened
    explicit Journal(const std::string& path = {}, bool violationsToStderr = false);

    void received(Time at, std::string_view meaning, std::span<const std::uint8_t> bytes = {});
    void sent(Time at, std::string_view meaning, std::span<const std::uint8_t> bytes = {});
    void note(Time at, std::string_view meaning);

    /// The client violated the format or the order of the conversation.
    void violation(Time at, std::string_view meaning);

    /// A well-formed request came; its command text is kept in requests().
    void request(Time at, const std::string& command, std::span<const std::uint8_t> frame);

    std::vector<std::string> violations() const;
    std::vector<std::string> requests() const;

    /// Whether a line contains the text.
    bool contains(std::string_view text) const;

private:
    void write(Time at, std::string_view direction, std::string_view meaning, std::span<const std::uint8_t> bytes);

    mutable std::mutex mutex_;
    std::ofstream file_;
    bool violationsToStderr_;
    std::vector<std::string> lines_;
    std::vector<std::string> violations_;
    std::vector<std::string> requests_;
};

}  // namespace units
