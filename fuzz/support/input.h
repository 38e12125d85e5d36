#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

/// If the invariant does not hold, says which and aborts, which counts as a crash.
inline void require(bool holds, const char* invariant) {
    if (holds)
        return;
    std::fprintf(stderr, "Broken invariant: %s\n", invariant);
    std::abort();
}

/// The bytes of an input, from front to back; then zeros and empty texts.
class Input {
public:
    Input(const std::uint8_t* bytes, std::size_t size) : left_(reinterpret_cast<const char*>(bytes), size) {}

    bool empty() const { return left_.empty(); }

    /// The next `most` bytes, or fewer at the end.
    std::string bytes(std::size_t most) {
        const std::string taken = left_.substr(0, most);
        left_.erase(0, taken.size());
        return taken;
    }

    std::uint8_t byte() { return static_cast<std::uint8_t>(bytes(1)[0]); }

private:
    std::string left_;
};
