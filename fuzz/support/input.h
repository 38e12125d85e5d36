/// What a fuzz target is made with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

/// Says which invariant does not hold, and aborts, which the fuzzer and the tests take for a crash.
inline void require(bool holds, const char* invariant) {
    if (holds)
        return;
    std::fprintf(stderr, "Broken invariant: %s\n", invariant);
    std::abort();
}

/// The bytes of an input, taken from front to back. Used up, it gives zeros and empty texts.
class Input {
public:
    Input(const std::uint8_t* bytes, std::size_t size) : left_(reinterpret_cast<const char*>(bytes), size) {}

    bool empty() const { return left_.empty(); }

    /// The next `most` bytes, or as many as are left.
    std::string bytes(std::size_t most) {
        const std::string taken = left_.substr(0, most);
        left_.erase(0, taken.size());
        return taken;
    }

    std::uint8_t byte() { return static_cast<std::uint8_t>(bytes(1)[0]); }

    std::string rest() { return bytes(left_.size()); }

private:
    std::string left_;
};
