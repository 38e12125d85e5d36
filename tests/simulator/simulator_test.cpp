#include "simulator/simulator.h"

#include "tests/simulator/frames.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace units::test {

using namespace std::chrono_literals;

/// A client's end of the line, as simple as can be.
struct Client {
    explicit Client(const std::string& port) : descriptor(open(port.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
    ~Client() { close(descriptor); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void write(const Bytes& bytes) const {
        ASSERT_EQ(::write(descriptor, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    /// Reads until `size` bytes have come, the line has hung up or has been silent for the time.
    Bytes read(std::size_t size, std::chrono::milliseconds silence = 2s) const {
        Bytes bytes;
        std::uint8_t byte = 0;
        pollfd waiting{descriptor, POLLIN, 0};
        while (bytes.size() < size && poll(&waiting, 1, static_cast<int>(silence.count())) > 0 &&
               ::read(descriptor, &byte, 1) == 1)
            bytes.push_back(byte);
        return bytes;
    }

    /// The content of the reply to a request; `size`: of its data.
    std::string ask(std::string_view command, std::size_t size) const {
        write(requestFrame(command));
        return contentOf(read(17 + size));
    }

    const int descriptor;
};

TEST(Simulator, TakesADownloadAndShowsTheNewVersion) {
    Simulator simulator;
    const Client client(simulator.port());
    EXPECT_EQ(client.ask("0101D40001000001", 8), "0001010000000030D4");
    EXPECT_EQ(client.ask("300550010000", 0), "0030050000");
    EXPECT_EQ(client.ask("300551010C00", 0), "0030050000");
    EXPECT_EQ(client.read(1), Bytes{kCrcStart});
    for (unsigned number = 1; number <= kImageBlocks; ++number) {
        client.write(packet(number));
        ASSERT_EQ(client.read(1), Bytes{kAck}) << number;
    }
    EXPECT_NE(simulator.firmware(Unit::amplifier), image());
    client.write(Bytes{kEot});
    EXPECT_EQ(client.read(1), Bytes{kAck});
    EXPECT_EQ(simulator.firmware(Unit::amplifier), image());
    EXPECT_EQ(client.ask("0101D40001000001", 8), "0001010000000030D8");
    EXPECT_TRUE(simulator.violations().empty());
}

TEST(Simulator, HearsNothingBeforeItsAnswerIsComplete) {
    Simulator simulator;
    const Client client(simulator.port());
    Bytes two = requestFrame("0601");
    two.insert(two.end(), two.begin(), two.begin() + 12);
    client.write(two);
    EXPECT_EQ(client.read(22, 200ms).size(), 21U);
    EXPECT_EQ(simulator.requests().size(), 1U);
    EXPECT_TRUE(simulator.violations().at(0).starts_with("12 bytes before the answer was complete"));
}

TEST(Simulator, TakesItsTimeOnALineWithARate) {
    Options options;
    options.rate = 9600;
    options.answerLatency = 20ms;
    Simulator simulator(options);
    const Client client(simulator.port());
    const auto start = std::chrono::steady_clock::now();
    for (int round = 0; round < 5; ++round)
        EXPECT_EQ(client.ask("0601", 4), "00060100000001");
    const auto duration = std::chrono::steady_clock::now() - start;
    // Lateness is made up for, and a quarter of a millisecond may be added to it.
    const auto wanted = 5 * ((12 + 21) * (10s / 9600.0) + 20ms);
    EXPECT_GE(duration, wanted - 5ms);
    EXPECT_LT(duration, wanted + 500ms);
}

TEST(Simulator, LooksAtTheSettingsOfThePort) {
    for (const LineState state : {LineState::hostile, LineState::fresh}) {
        Options options;
        options.lineState = state;
        options.expectSpeed = 38400;
        Simulator simulator(options);
        const Client client(simulator.port());
        client.write(Bytes{'\n'});
        for (int i = 0; i < 500 && simulator.violations().empty(); ++i)
            std::this_thread::sleep_for(10ms);
        EXPECT_TRUE(simulator.hasNoted("VIOLATION: port "));
    }
}

TEST(Simulator, ForgetsTheExclusiveUseOfAClientThatHasGone) {
    Simulator simulator;
    const auto isExclusive = [&simulator] {
        int exclusive = -1;
        ioctl(Client(simulator.port()).descriptor, TIOCGEXCL, &exclusive);
        return exclusive != 0;
    };
    {
        const Client client(simulator.port());
        ASSERT_EQ(ioctl(client.descriptor, TIOCEXCL), 0);
    }
    for (int tries = 0; tries < 100 && isExclusive(); ++tries)
        usleep(10'000);
    EXPECT_FALSE(isExclusive());
}

}  // namespace units::test
