#include "simulator/journal.h"

#include "simulator/bytes.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <stdexcept>

namespace units {

namespace {

std::string timeStamp(Time at) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(3) << std::setw(11) << std::chrono::duration<double, std::milli>(at).count()
         << ' ';
    return text.str();
}

}  // namespace

Journal::Journal(const std::string& path, bool violationsToStderr) : violationsToStderr_(violationsToStderr) {
    if (path.empty())
        return;
    file_.open(path, std::ios::trunc);
    if (!file_)
        throw std::runtime_error("cannot write " + path);
}

void Journal::received(Time at, std::string_view meaning, std::span<const std::uint8_t> bytes) {
    const std::lock_guard lock(mutex_);
    write(at, "<- ", meaning, bytes);
}

void Journal::sent(Time at, std::string_view meaning, std::span<const std::uint8_t> bytes) {
    const std::lock_guard lock(mutex_);
    write(at, "-> ", meaning, bytes);
}

void Journal::note(Time at, std::string_view meaning) {
    const std::lock_guard lock(mutex_);
    write(at, "   ", meaning, {});
}

void Journal::violation(Time at, std::string_view meaning) {
    const std::lock_guard lock(mutex_);
    violations_.emplace_back(meaning);
    write(at, "!! VIOLATION: ", meaning, {});
    if (violationsToStderr_)
        std::cerr << lines_.back() << std::endl;
}

void Journal::request(Time at, const std::string& command, std::span<const std::uint8_t> frame) {
    const std::lock_guard lock(mutex_);
    requests_.push_back(command);
    write(at, "<- ", "request " + command, frame);
}

std::vector<std::string> Journal::violations() const {
    const std::lock_guard lock(mutex_);
    return violations_;
}

std::vector<std::string> Journal::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

bool Journal::contains(std::string_view text) const {
    const std::lock_guard lock(mutex_);
    return std::any_of(lines_.begin(), lines_.end(),
                       [text](const std::string& line) { return line.find(text) != std::string::npos; });
}

void Journal::write(Time at, std::string_view direction, std::string_view meaning,
                    std::span<const std::uint8_t> bytes) {
    std::string line = timeStamp(at);
    line += direction;
    line += meaning;
    if (!bytes.empty())
        line += "  [" + hexDump(bytes) + "]";
    if (file_.is_open())
        file_ << line << std::endl;
    lines_.push_back(std::move(line));
}

}  // namespace units
