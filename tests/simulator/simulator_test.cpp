#include "simulator/simulator.h"

#include "tests/simulator/frames.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace units::test {

/// A client's end of the line: writes, and looks for what the simulated units complain about.
static bool isReported(const Options& options, const Bytes& written, const char* violation) {
    Simulator simulator(options);
    const int port = open(simulator.port().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_EQ(write(port, written.data(), written.size()), static_cast<ssize_t>(written.size()));
    for (int i = 0; i < 500 && simulator.violations().empty(); ++i)
        usleep(10'000);
    close(port);
    return simulator.hasNoted(std::string("VIOLATION: ") + violation);
}

TEST(Simulator, HearsNothingBeforeItsAnswerIsComplete) {
    Bytes two = requestFrame("0601");
    two.insert(two.end(), two.begin(), two.begin() + 12);
    EXPECT_TRUE(isReported({}, two, "12 bytes before the answer was complete"));
}

TEST(Simulator, LooksAtTheSettingsOfThePort) {
    for (const LineState state : {LineState::hostile, LineState::fresh}) {
        Options options;
        options.lineState = state;
        options.expectSpeed = 38400;
        EXPECT_TRUE(isReported(options, {'\n'}, "port "));
    }
}

}  // namespace units::test
