#include "simulator/fault_book.h"
#include "simulator/script.h"

#include <gtest/gtest.h>
#include <sstream>

namespace units::test {

TEST(Fault, ReadsTheGrammar) {
    const Fault data = parseFault("data:a@b*c#1:@0101D4#2*all");
    EXPECT_EQ(data.bytes, bytesOf("a@b*c#1:"));
    EXPECT_EQ(data.place.command, "0101D4");
    EXPECT_EQ(data.first, 2U);
    EXPECT_EQ(data.times, Fault::kAlways);
    EXPECT_EQ(parseFault("data:0x00FF@0501").bytes, (Bytes{0x00, 0xFF}));
    EXPECT_EQ(parseFault("splitat:9,50@block2").pause, 50U);
}

TEST(Fault, RefusesWhatCannotHappen) {
    std::istringstream wrong(
        "nak nak@ @packet1 nak@packet0 nak@packetx nak@packet1*0 nak@packet1*x nak@packet1#0 nak:1@packet1 delay@0501 "
        "delay:@0501 delay:x@0501 delay:-1@0501 noise:0@start endcode:1@0501 response:10@0501 splitat:1,x@0501 "
        "splitat:1,@0501x nonsense@0501 nak@0501 endcode:10@packet1 can:2@0501 cut:3@start silence@start "
        "silence@block1 bcc@eot number:1@packet1 lost@start1 lost@0501a nak@block1 number:256@block1 unplugin@eot");
    for (std::string fault; wrong >> fault;)
        EXPECT_THROW(parseFault(fault), std::invalid_argument) << fault;
    EXPECT_THROW(parseFault(""), std::invalid_argument);
}

TEST(FaultBook, CountsOccurrencesOfThePlace) {
    using enum PlaceKind;
    struct Case {
        const char* fault;
        PlaceKind place;
        unsigned number;
        std::vector<unsigned> due;  // occurrences, from 1, out of five
    };
    const Case cases[] = {{"lost@3005", command, 0, {1}},        {"lost@300550*2", command, 0, {1, 2}},
                          {"lost@3005#2*2", command, 0, {2, 3}}, {"lost@3005#4*all", command, 0, {4, 5}},
                          {"lost@300551", command, 0, {}},       {"lost@packet5", packet, 5, {1}},
                          {"lost@packet5", packet, 50, {}},      {"lost@packet5", block, 5, {}},
                          {"lost@block", block, 1920, {1}},      {"lost@eot1", uploadEot, 1, {1}},
                          {"lost@eot1", uploadEot, 2, {}},       {"lost@eot", uploadEot, 1, {}}};
    for (const Case& expected : cases) {
        FaultBook book({expected.fault});
        std::vector<unsigned> due;
        for (unsigned occurrence = 1; occurrence <= 5; ++occurrence)
            if (book.occur({expected.place, "300550010000", expected.number}).has(FaultKind::lost))
                due.push_back(occurrence);
        EXPECT_EQ(due, expected.due) << expected.fault;
        EXPECT_EQ(book.unused().empty(), !expected.due.empty()) << expected.fault;
    }
}

TEST(Script, ShapesAnAnswer) {
    using enum Step::Ending;
    struct Case {
        std::vector<std::string> faults;
        const char* bytes;
        std::size_t steps;
        Step::Ending ending;
    };
    const Case cases[] = {
        {{"lost@0501", "noise:FF@0501"}, "FF", 1, none},
        {{"garble@0501", "cut:3@0501"}, "10 20 31", 1, none},
        {{"cut:9@0501", "bcc@0501"}, "10 20 30 BF", 1, none},
        {{"splitat:1@0501", "unplugafter@0501"}, "10 20 30 40", 3, unplug},
        {{"splitat:4@0501", "repeat@0501", "cut:3@0501"}, "10 20 30 10 20 30", 3, none},
        {{"noise:FF@0501", "split:5@0501"}, "FF 10 20 30 40", 5, none},
        {{"answer:0615@0501"}, "06 15", 1, none},
        {{"unplugin@0501"}, "10 20", 1, unplug},
        {{"mute@0501"}, "", 1, mute},
    };
    for (const Case& expected : cases) {
        FaultBook book(expected.faults);
        const ActiveFaults active = book.occur({PlaceKind::command, "0501", 0});
        const Script script = shape({0x10, 0x20, 0x30, 0x40}, active);
        EXPECT_EQ(hexDump(bytesOf(script)), expected.bytes) << active.text();
        EXPECT_EQ(script.steps.size(), expected.steps) << active.text();
        EXPECT_EQ(script.steps.back().ending, expected.ending) << active.text();
    }
}

}  // namespace units::test
