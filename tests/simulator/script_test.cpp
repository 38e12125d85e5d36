#include "simulator/script.h"

#include <gtest/gtest.h>
#include <sstream>

namespace units {
namespace {

/// "+MS" pause, "~MS" flood, hex bytes, "X" unplug and "M" mute at the end of a step; steps separated by blanks.
std::string describe(const Script& script) {
    std::ostringstream text;
    const auto milliseconds = [](Time time) {
        return std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
    };
    for (const Step& step : script.steps) {
        text << (&step == &script.steps.front() ? "" : " ");
        if (step.pause > Time{0})
            text << '+' << milliseconds(step.pause) << ':';
        if (step.flood > Time{0})
            text << '~' << milliseconds(step.flood) << ':';
        for (const std::uint8_t byte : step.bytes)
            text << hexNumber(byte, 2);
        if (step.ending != Step::Ending::none)
            text << (step.ending == Step::Ending::unplug ? 'X' : 'M');
    }
    return text.str();
}

TEST(Script, ShapesAnAnswer) {
    struct Case {
        std::vector<std::string> faults;
        const char* script;
    };
    const Case cases[] = {
        {{}, "10203040"},
        {{"lost@0501"}, ""},
        {{"delay:50@0501"}, "+50:10203040"},
        {{"delay:50@0501", "lost@0501"}, "+50:"},
        {{"cut:3@0501"}, "102030"},
        {{"cut:9@0501"}, "10203040"},
        {{"cut:0@0501"}, ""},
        {{"split:5@0501"}, " 10 +5:20 +5:30 +5:40"},
        {{"splitat:1@0501"}, " 10 +100:203040"},
        {{"splitat:4@0501"}, "10203040"},
        {{"repeat@0501"}, "1020304010203040"},
        {{"noise:FF00@0501"}, "FF0010203040"},
        {{"noise:FF@0501", "split:5@0501"}, "FF 10 +5:20 +5:30 +5:40"},
        {{"flood:70@0501"}, "~70:10203040"},
        {{"answer:0615@0501"}, "0615"},
        {{"bcc@0501"}, "102030BF"},
        {{"garble@0501"}, "10203140"},
        {{"garble@0501", "cut:3@0501"}, "102031"},
        {{"unplug@0501"}, "X"},
        {{"delay:9@0501", "unplug@0501"}, "+9:X"},
        {{"unplugin@0501"}, "1020X"},
        {{"unplugafter@0501"}, "10203040X"},
        {{"unplugafter@0501", "splitat:1,7@0501"}, " 10 +7:203040X"},
        {{"mute@0501"}, "M"},
    };
    for (const Case& expected : cases) {
        FaultBook book(expected.faults);
        const ActiveFaults active = book.occur({PlaceKind::command, "0501", 0});
        EXPECT_EQ(describe(shape({0x10, 0x20, 0x30, 0x40}, active)), expected.script) << active.text();
    }
    FaultBook cancel({"can:3@start"});
    EXPECT_EQ(describe(shape({0x43}, cancel.occur({PlaceKind::start, {}, 0}))), "181818");
}

}  // namespace
}  // namespace units
