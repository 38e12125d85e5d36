/// A whole session of the program, from its start to the end of a write or a save, again and again: once for every
/// place in the conversation and every fault that can happen there. Whatever goes wrong, what must hold holds.
#include "app/startup_form.h"
#include "sweep/fault_kinds.h"
#include "upgrade/main_window_fixture.h"

#include <QElapsedTimer>

#include <map>
#include <optional>

#ifdef __SANITIZE_ADDRESS__
/// The end of the program, which is thrown here, robs QPushButton::click() of its clean-up.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:QtSharedPointer::ExternalRefCountData::getAndRef\n";
}
#endif

namespace {

/// The places of a session, as the simulator names them but for "_again" in the place of "#", with the work that comes
/// to them.
const std::string kPlaces[] = {"Write_0501",
                               "Write_0601",
                               "Write_0101D40001000001",
                               "Write_0101D50001000001",
                               "Write_0501_again2",
                               "Write_0101D40001000001_again2",
                               "Write_300550010000",
                               "Write_300551010C00",
                               "Write_start",
                               "Write_packet1",
                               "Write_packet256",
                               "Write_packet1920",
                               "Write_eot",
                               "Write_300554010000",
                               "Write_300553010000",
                               "Save_300552010C00",
                               "Save_block1",
                               "Save_block5",
                               "Save_block9",
                               "Save_eot1",
                               "Save_eot2",
                               "Save_300554010000",
                               "Save_300553010000"};

/// The faults of a place: each kind once and, where the line is still there then, each time.
FaultKinds faultsAt(const std::string& place) {
    std::string where = place.substr(place.find('_') + 1);
    if (const std::size_t again = where.find("_again"); again != std::string::npos)
        where.replace(again, 6, "#");
    FaultKinds faults;
    for (const std::string& kind : faultKindsAt(where)) {
        faults.push_back(kind + "@" + where);
        if (!kind.starts_with("unplug"))
            faults.push_back(faults.back() + "*all");
    }
    return faults;
}

/// A session of the program, from fresh state, which comes to a write or to a save.
class Session : public MainWindowTest {
public:
    Session(bool writes, const std::string& fault) : writes_(writes) {
        gWaits.reply = gWaits.exchangeMark = 100ms;
        gWaits.operationReply = 150ms;
        gWaits.transferStart = 600ms;
        // A busy machine can be late itself: no shorter a wait than the fault asks for.
        if (fault.find("@packet") != std::string::npos || fault.find("@eot") != std::string::npos ||
            fault.starts_with("delay:400"))
            gWaits.packetAnswer = 150ms;
        gWaits.readSilence = 200ms;
        writeFile("Setting.INI", "[OPERATION]\nLanguage=ENGLISH\n[IFU]\nCOM=1\n");
        writeFile("TYPE.INI", readFile("TYPE.INI") + "[IFU_TYPE]\nSV-IFU16=D\n");
        writeImage("image.bin", "AMPKEY", 13500);
        writeFile("saved.bin", "old");
        options.amplifierFirmware = units::makeImage("AMPKEY", 12500, 3);
        options.uploadBlocks = 9;
        window.showServiceControls();
        window.hide();
        plug({fault});
        orEnd([this] { form.load(); });
    }
    void TestBody() override {}

    /// Presses "Set" where the program offers its ports. @return whether the main window is there
    bool enter() {
        if (!hasEnded && !window.isVisible())
            orEnd([this] { form.findChild<QPushButton*>("cmdTest")->click(); });
        return window.isVisible();
    }

    /// Does the work. @return whether the program says that it has succeeded
    bool work() {
        user.said();
        if (writes_) {
            load("image.bin");
            upgrade();
        } else {
            save("saved.bin");
        }
        EXPECT_TRUE(window.isVisible() && isUsable() && progressDialog() == nullptr);
        EXPECT_EQ(shownCursor(), Qt::ArrowCursor);
        EXPECT_FALSE(gTransferBusy);
        EXPECT_TRUE(gTransferState == kIdleAfterWrite || gTransferState == kIdleAfterRead) << gTransferState;
        const QStringList said = user.said();
        EXPECT_NE(said.contains("Succeed"), said.contains("Failed")) << "each run says how it went, once";
        return said.contains("Succeed");
    }

    /// Whether the work has come to its end: the image is in the unit, or the firmware in the file.
    bool isDone() const {
        return writes_ ? unitHolds("image.bin", units::Unit::amplifier)
                       : readFile("saved.bin") == firmware().left(9 * 128).leftJustified(kImageSize, '\0');
    }

    bool offersPorts() const { return form.isVisible() && form.findChild<QPushButton*>("cmdTest")->isVisible(); }

    bool hasEnded = false;
    using MainWindowTest::plug;
    using MainWindowTest::readFile;
    using MainWindowTest::requests;
    using MainWindowTest::row;
    using MainWindowTest::simulator;

private:
    void orEnd(const std::function<void()>& act) {
        try {
            act();
        } catch (const ProgramEnded&) {
            hasEnded = true;
        }
    }

    const bool writes_;
    frmStartUp form{window};
};

/// Records that `fault` must leave in the communication log: a reply that is spoiled after its end code leaves one.
/// Nothing where it depends on the very bytes that are spoiled.
std::optional<qsizetype> dueRecords(const std::string& fault, const std::vector<std::string>& requests) {
    for (const char* kind : {"garble", "noise", "repeat", "delay:400"})
        if (fault.starts_with(kind))
            return std::nullopt;
    if (!fault.starts_with("bcc@") && !fault.starts_with("cut:12@"))
        return 0;
    // The unit already sends start characters, which can come into the reply to the next attempt.
    if (fault.find("@300551") != std::string::npos)
        return std::nullopt;
    const std::string place = fault.substr(fault.find('@') + 1);
    const std::string command = place.substr(0, place.find_first_of("#*"));
    const auto asked = std::count(requests.begin(), requests.end(), command) - (place.find("#2") != std::string::npos);
    return fault.ends_with("*all") ? asked : std::min<qsizetype>(asked, 1);
}

/// Whether a spoiled block of a read goes unnoticed: a read looks at no check byte and no block number.
bool escapesARead(const std::string& fault) {
    return fault.find("@block") != std::string::npos && (fault.starts_with("garble") || fault.starts_with("repeat"));
}

/// What does not work the first time works as soon as the fault is over.
void recover(Session& session, bool writes, const std::string& fault) {
    const bool entered = session.enter();
    if (fault.ends_with("*all"))
        return;
    if (!fault.starts_with("unplug")) {
        // What was late the first time may still be on the line the second time.
        const auto works = [&session] { return session.work() && session.isDone(); };
        EXPECT_TRUE(session.hasEnded || (entered && (works() || works())));
    } else if (!entered) {
        session.plug({});
        EXPECT_TRUE(session.enter()) << "the cable is back";
    } else {
        EXPECT_EQ(session.work(), !writes) << "only a start of the program opens the port again";
        EXPECT_FALSE(session.isDone());
    }
}

void run(bool writes, const std::string& fault) {
    QElapsedTimer clock;
    clock.start();
    Session session(writes, fault);
    const bool entered = session.enter();
    const bool succeeded = entered && session.work();
    EXPECT_TRUE(entered || session.hasEnded || session.offersPorts());
    EXPECT_LT(clock.elapsed(), 5'000);
    if (writes) {
        EXPECT_TRUE(!succeeded || waitServingEvents(3s, [&] { return session.isDone(); }));
        EXPECT_EQ(session.row(0) == "AMP-A 1.500", succeeded);
    } else {
        EXPECT_TRUE(session.isDone() || session.readFile("saved.bin") == "old" || escapesARead(fault));
    }
    const qsizetype records = session.readFile("PelkLog.txt").count("[NG2]");
    EXPECT_EQ(records, dueRecords(fault, session.requests()).value_or(records));
    // Later than that, and the program goes on while the unit is still at its answer.
    EXPECT_TRUE(fault.starts_with("delay:400") || session.simulator->violations().empty())
        << session.simulator->violations().front();
    if (!session.hasEnded && !session.isDone())
        recover(session, writes, fault);
}

class Sweep : public testing::TestWithParam<std::string> {};

TEST_P(Sweep, WhatMustHoldHolds) {
    for (const std::string& fault : faultsAt(GetParam())) {
        SCOPED_TRACE(fault);
        run(GetParam().starts_with("Write"), fault);
    }
}

INSTANTIATE_TEST_SUITE_P(FaultsAt, Sweep, testing::ValuesIn(kPlaces), [](const auto& place) {
    return place.param + "_" + std::to_string(faultsAt(place.param).size()) + "_runs";
});

TEST(SweepPlaces, AreAllThatAGoodSessionHas) {
    for (const char* work : {"Write_", "Save_"}) {
        Session session(*work == 'W', "");
        EXPECT_TRUE(session.enter() && session.work() && session.isDone());
        std::map<std::string, int> seen;
        for (const std::string& request : session.requests()) {
            // A save starts as a write does.
            std::string place = (request.starts_with("3005") ? work : "Write_") + request;
            if (++seen[request] > 1)
                place += "_again" + std::to_string(seen[request]);
            EXPECT_NE(std::find(std::begin(kPlaces), std::end(kPlaces), place), std::end(kPlaces)) << place;
        }
    }
}

}  // namespace
