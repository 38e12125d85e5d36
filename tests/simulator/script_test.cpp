#include "simulator/fault_book.h"
#include "simulator/script.h"

#include <gtest/gtest.h>

namespace units::test {

TEST(Script, ShapesAnAnswer) {
    using enum Step::Ending;
    const std::tuple<std::vector<std::string>, const char*, std::size_t, Step::Ending> cases[] = {
        {{"lost@0501", "noise:FF@0501"}, "FF", 1, none},
        {{"garble@0501", "cut:3@0501"}, "10 20 31", 1, none},
        {{"cut:9@0501", "bcc@05"}, "10 20 30 BF", 1, none},
        {{"splitat:1@0501", "unplugafter@0501"}, "10 20 30 40", 3, unplug},
        {{"noise:FF@0501", "split:5@0501", "repeat@0501"}, "FF 10 20 30 40 10 20 30 40", 9, none},
        {{"answer:0615@0501", "lost@0501#2", "lost@0502", "lost@packet1"}, "06 15", 1, none},
        {{"unplugin@0501"}, "10 20", 1, unplug},
    };
    for (const auto& [faults, bytes, steps, ending] : cases) {
        const ActiveFaults active = FaultBook(faults).occur({PlaceKind::command, "0501", 0});
        const Script script = shape({0x10, 0x20, 0x30, 0x40}, active);
        EXPECT_EQ(hexDump(bytesOf(script)), bytes) << active.text();
        EXPECT_EQ(script.steps.size(), steps) << active.text();
        EXPECT_EQ(script.steps.back().ending, ending) << active.text();
    }
}

}  // namespace units::test
