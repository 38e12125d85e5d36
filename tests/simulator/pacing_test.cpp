#include "simulator/arrivals.h"
#include "simulator/transmitter.h"

#include <gtest/gtest.h>

namespace units {
namespace {

using namespace std::chrono_literals;

std::vector<Time> times(const Arrivals& arrivals) {
    std::vector<Time> result;
    for (std::size_t i = 0; i < arrivals.size(); ++i)
        result.push_back(arrivals[i].at);
    return result;
}

TEST(Arrivals, TakeAByteTimeEach) {
    Arrivals arrivals(1ms);
    arrivals.add(Bytes{1, 2}, 10ms);
    arrivals.add(Bytes{3}, 10500us);  // the line is still busy
    arrivals.add(Bytes{4}, 20ms);     // the line has been idle
    EXPECT_EQ(times(arrivals), (std::vector<Time>{11ms, 12ms, 13ms, 21ms}));
}

TEST(Arrivals, ForgiveTheLatenessOnceAndWithinReason) {
    Arrivals arrivals(1ms);
    arrivals.forgive(300us);
    arrivals.add(Bytes{1}, 10ms);
    arrivals.add(Bytes{2}, 20ms);
    arrivals.forgive(1s);
    arrivals.add(Bytes{3}, 200ms);
    EXPECT_EQ(times(arrivals), (std::vector<Time>{10700us, 21ms, 101ms}));
}

TEST(Arrivals, AreImmediateWithoutRate) {
    Arrivals arrivals(0ms);
    arrivals.add(Bytes{1, 2}, 10ms);
    EXPECT_EQ(times(arrivals), (std::vector<Time>{10ms, 10ms}));
}

struct Sent {
    Time due;
    std::size_t size;
    Step::Ending ending;
    bool operator==(const Sent&) const = default;
};

std::vector<Sent> drain(Transmitter& transmitter) {
    std::vector<Sent> sent;
    while (transmitter.busy()) {
        const auto portion = transmitter.front();
        sent.push_back({portion.due, portion.bytes.size(), portion.ending});
        transmitter.written(portion.bytes.size(), portion.due);
    }
    return sent;
}

TEST(Transmitter, PacesPortionsFromTheCauseOn) {
    Transmitter transmitter(1ms);
    transmitter.load({{{.bytes = Bytes(20)}, {.pause = 5ms, .bytes = Bytes(1), .ending = Step::Ending::unplug}}, false},
                     100ms);
    EXPECT_EQ(drain(transmitter),
              (std::vector<Sent>{
                  {116ms, 16, Step::Ending::none}, {120ms, 4, Step::Ending::none}, {126ms, 1, Step::Ending::unplug}}));
    transmitter.load({{{.bytes = Bytes(1)}}, false}, 50ms);  // the line is busy until 126 ms
    EXPECT_EQ(drain(transmitter), (std::vector<Sent>{{127ms, 1, Step::Ending::none}}));
}

TEST(Transmitter, SendsWholeStepsWithoutRate) {
    Transmitter transmitter(0ms);
    transmitter.load({{{.pause = 2ms, .bytes = Bytes(200)}, {.ending = Step::Ending::mute}}, false}, 10ms);
    EXPECT_TRUE(transmitter.untouched());
    EXPECT_EQ(drain(transmitter), (std::vector<Sent>{{12ms, 200, Step::Ending::none}, {12ms, 0, Step::Ending::mute}}));
}

TEST(Transmitter, KeepsWhatWasNotWritten) {
    Transmitter transmitter(0ms);
    transmitter.load({{{.bytes = {1, 2, 3}}}, false}, 10ms);
    transmitter.written(2, 10ms);
    EXPECT_FALSE(transmitter.untouched());
    EXPECT_EQ(transmitter.front().bytes, Bytes{3});
}

TEST(Transmitter, FloodsAtFullSpeedForTheTime) {
    Transmitter transmitter(1ms);
    transmitter.load({{{.flood = 160ms, .bytes = Bytes(1)}}, false}, 0ms);
    const auto sent = drain(transmitter);
    ASSERT_EQ(sent.size(), 11U);
    EXPECT_EQ(sent[9], (Sent{160ms, 16, Step::Ending::none}));
    EXPECT_EQ(sent[10], (Sent{161ms, 1, Step::Ending::none}));
}

}  // namespace
}  // namespace units
