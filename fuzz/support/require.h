/// How a fuzz target says that something is wrong.
#pragma once

#include <cstdio>
#include <cstdlib>

/// Says which invariant does not hold, and aborts, which the fuzzer and the tests take for a crash.
inline void require(bool holds, const char* invariant) {
    if (holds)
        return;
    std::fprintf(stderr, "Broken invariant: %s\n", invariant);
    std::abort();
}
