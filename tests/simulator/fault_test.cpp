#include "simulator/fault.h"

#include "simulator/fault_book.h"
#include "simulator/fault_kinds.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace units {
namespace {

TEST(Fault, ReadsTheGrammar) {
    const Fault nak = parseFault("nak@packet5*9");
    EXPECT_EQ(nak.kind, FaultKind::nak);
    EXPECT_EQ(nak.place.kind, PlaceKind::packet);
    EXPECT_EQ(nak.place.number, 5U);
    EXPECT_EQ(nak.times, 9U);

    const Fault data = parseFault("data:a@b*c#1:@0101D4#2*all");
    EXPECT_EQ(data.bytes, bytesOf("a@b*c#1:"));
    EXPECT_EQ(data.place.command, "0101D4");
    EXPECT_EQ(data.first, 2U);
    EXPECT_EQ(data.times, Fault::kAlways);

    EXPECT_EQ(parseFault("data:@0501").bytes, Bytes{});
    EXPECT_EQ(parseFault("data:0x00FF@0501").bytes, (Bytes{0x00, 0xFF}));
    EXPECT_EQ(parseFault("splitat:9@0501").pause, 100U);
    EXPECT_EQ(parseFault("splitat:9,50@block2").pause, 50U);
    EXPECT_EQ(parseFault("lost@eot").place.kind, PlaceKind::eot);
    EXPECT_EQ(parseFault("lost@eot2").place.kind, PlaceKind::uploadEot);
    EXPECT_EQ(parseFault("delay:1@packet*all").place.number, 0U);
}

TEST(Fault, RefusesWhatCannotHappen) {
    for (const char* wrong : {"",
                              "nak",
                              "nak@",
                              "nak@packet0",
                              "nak@packetx",
                              "nak@packet1*0",
                              "nak@packet1*x",
                              "nak@packet1#0",
                              "nak:1@packet1",
                              "delay@0501",
                              "delay:@0501",
                              "delay:x@0501",
                              "delay:-1@0501",
                              "noise:0@start",
                              "endcode:1@0501",
                              "response:10@0501",
                              "splitat:1,x@0501",
                              "splitat:1,@0501x",
                              "nonsense@0501",
                              "nak@0501",
                              "endcode:10@packet1",
                              "can:2@0501",
                              "cut:3@start",
                              "silence@start",
                              "silence@block1",
                              "bcc@eot",
                              "number:1@packet1",
                              "lost@start1",
                              "lost@0501a",
                              "nak@block1",
                              "number:256@block1",
                              "unplugin@eot"})
        EXPECT_THROW(parseFault(wrong), std::invalid_argument) << wrong;
}

TEST(Fault, HelpNamesEveryKind) {
    for (const FaultKindInfo& kind : faultKinds())
        EXPECT_NE(faultHelp().find("\n  " + std::string(kind.name) + " "), std::string::npos) << kind.name;
}

TEST(FaultBook, CountsOccurrences) {
    struct Case {
        const char* fault;
        std::vector<unsigned> due;  // occurrences, from 1, out of five
    };
    const Case cases[] = {{"lost@3005", {1}},        {"lost@3005#3", {3}},        {"lost@3005*2", {1, 2}},
                          {"lost@3005#2*2", {2, 3}}, {"lost@3005#4*all", {4, 5}}, {"lost@0501*all", {}}};
    for (const Case& expected : cases) {
        FaultBook book({expected.fault});
        std::vector<unsigned> due;
        for (unsigned occurrence = 1; occurrence <= 5; ++occurrence)
            if (book.occur({PlaceKind::command, "300550010000", 0}).has(FaultKind::lost))
                due.push_back(occurrence);
        EXPECT_EQ(due, expected.due) << expected.fault;
        EXPECT_EQ(book.unused().empty(), !expected.due.empty()) << expected.fault;
    }
}

TEST(FaultBook, TellsPlacesApart) {
    FaultBook book({"lost@packet5*all", "lost@block*all", "lost@eot1*all", "lost@eot*all"});
    struct Case {
        Place place;
        bool due;
    };
    const Case cases[] = {{{PlaceKind::packet, {}, 5}, true},    {{PlaceKind::packet, {}, 50}, false},
                          {{PlaceKind::block, {}, 5}, true},     {{PlaceKind::block, {}, 1920}, true},
                          {{PlaceKind::uploadEot, {}, 1}, true}, {{PlaceKind::uploadEot, {}, 2}, false},
                          {{PlaceKind::eot, {}, 0}, true},       {{PlaceKind::start, {}, 0}, false}};
    for (const Case& expected : cases)
        EXPECT_EQ(book.occur(expected.place).has(FaultKind::lost), expected.due)
            << static_cast<int>(expected.place.kind) << ' ' << expected.place.number;
}

}  // namespace
}  // namespace units
