/// A whole session of the program, from its start to the end of a write, a save or a verified write, again and again:
/// once for every place in the conversation and every fault that can happen there. Whatever goes wrong, what must hold
/// holds.
#include "app/startup_form.h"
#include "sweep/fault_kinds.h"
#include "upgrade/main_window_fixture.h"

#include <QCheckBox>
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
                               "Save_300553010000",
                               "Verify_300550010000",
                               "Verify_300551010C00",
                               "Verify_start",
                               "Verify_packet1",
                               "Verify_packet256",
                               "Verify_packet1920",
                               "Verify_eot",
                               "Verify_300554010000",
                               "Verify_300552010C00",
                               "Verify_block1",
                               "Verify_block960",
                               "Verify_block1920",
                               "Verify_eot1",
                               "Verify_eot2",
                               "Verify_300554010000_again2",
                               "Verify_300554010000_again3",
                               "Verify_300553010000"};

enum class Work { write, save, verify };

Work workOf(const std::string& place) {
    return place.starts_with("Write") ? Work::write : place.starts_with("Save") ? Work::save : Work::verify;
}

/// The faults of a place: each kind once and, where the line is still there then, each time; the work of a verified
/// write is that of a write and of a read, for which once is enough.
FaultKinds faultsAt(const std::string& place) {
    std::string where = place.substr(place.find('_') + 1);
    if (const std::size_t again = where.find("_again"); again != std::string::npos)
        where.replace(again, 6, "#");
    FaultKinds faults;
    for (const std::string& kind : faultKindsAt(where)) {
        faults.push_back(kind + "@" + where);
        if (!kind.starts_with("unplug") && workOf(place) != Work::verify)
            faults.push_back(faults.back() + "*all");
    }
    return faults;
}

/// A session of the program, from fresh state, which comes to its work.
class Session : public MainWindowTest {
public:
    Session(Work work, const std::string& fault) : work_(work) {
        // A busy machine can be late itself: no shorter a wait than the fault asks for.
        const auto isAt = [&fault](const char* place) { return fault.find(place) != std::string::npos; };
        const bool comesLate = fault.starts_with("delay:400");
        const bool isInARead = isAt("@block") || isAt("@eot1") || isAt("@eot2") || isAt("@300552");
        gWaits.exchangeMark = 100ms;
        gWaits.reply = isAt("@0") || comesLate ? 100ms : 1'500ms;
        gWaits.operationReply = isAt("@3") || comesLate ? 250ms : 1'500ms;
        gWaits.transferStart = isAt("@start") || isAt("@3") || comesLate ? 600ms : 1'500ms;
        if (isAt("@packet") || isAt("@eot") || comesLate)
            gWaits.packetAnswer = 200ms;
        gWaits.readSilence = isInARead || comesLate ? 200ms : 1'500ms;
        writeFile("Setting.INI", "[OPERATION]\nLanguage=ENGLISH\n[IFU]\nCOM=1\n");
        writeFile("TYPE.INI", readFile("TYPE.INI") + "[IFU_TYPE]\nSV-IFU16=D\n");
        writeImage("image.bin", "AMPKEY", 13500);
        writeFile("saved.bin", "old");
        options.amplifierFirmware = units::makeImage("AMPKEY", 12500, 3);
        options.uploadBlocks = work == Work::verify ? 1'920 : 9;
        window.showServiceControls();
        window.findChild<QCheckBox*>("chkVerify")->setChecked(work == Work::verify);
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
        if (work_ == Work::save) {
            save("saved.bin");
        } else {
            load("image.bin");
            upgrade();
        }
        EXPECT_TRUE(window.isVisible());
        EXPECT_EQ(state(), kReady);
        EXPECT_FALSE(TransferRun::isRunning()) << gTransferState;
        const QStringList said = user.said();
        EXPECT_NE(said.contains("Succeed"), said.contains("Failed")) << "each run says how it went, once";
        return said.contains("Succeed");
    }

    /// Whether the work has come to its end: the image is in the unit, or the firmware in the file.
    bool isDone() const {
        return work_ != Work::save ? readFile("image.bin") == firmware()
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

    const Work work_;
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
    const std::size_t mark = place.find('#');
    const auto asked = std::count(requests.begin(), requests.end(), command) -
                       (mark == std::string::npos ? 0 : std::stoi(place.substr(mark + 1)) - 1);
    return fault.ends_with("*all") ? asked : std::min<qsizetype>(asked, 1);
}

/// Whether a spoiled block of a read goes unnoticed: a read looks at no check byte and no block number.
bool escapesARead(const std::string& fault) {
    return fault.find("@block") != std::string::npos && (fault.starts_with("garble") || fault.starts_with("repeat"));
}

/// What does not work the first time works as soon as the fault is over.
void recover(Session& session, Work work, const std::string& fault) {
    const bool entered = session.enter();
    const bool wantsRestart = entered && gobjComm == nullptr;  // after a verification
    if (fault.ends_with("*all") || wantsRestart)
        return;
    if (!fault.starts_with("unplug")) {
        // What was late the first time may still be on the line the second time.
        const auto works = [&session] { return session.work() && session.isDone(); };
        EXPECT_TRUE(session.hasEnded || (entered && (works() || works())));
    } else if (!entered) {
        session.plug({});
        EXPECT_TRUE(session.enter()) << "the cable is back";
    } else {
        EXPECT_EQ(session.work(), work == Work::save) << "only a start of the program opens the port again";
        EXPECT_FALSE(session.isDone());
    }
}

void run(Work work, const std::string& fault) {
    QElapsedTimer clock;
    clock.start();
    Session session(work, fault);
    const bool entered = session.enter();
    const bool succeeded = entered && session.work();
    EXPECT_TRUE(entered || session.hasEnded || session.offersPorts());
    EXPECT_LT(clock.elapsed(), 5'000);
    if (work != Work::save) {
        EXPECT_TRUE(!succeeded || waitServingEvents(3s, [&] { return session.isDone(); }));
        EXPECT_EQ(session.row(0) == "AMP-A 1.500", succeeded && work == Work::write);
    } else {
        EXPECT_TRUE(session.isDone() || session.readFile("saved.bin") == "old" || escapesARead(fault));
    }
    const qsizetype records = session.readFile("PelkLog.txt").count("[NG2]");
    EXPECT_EQ(records, dueRecords(fault, session.requests()).value_or(records));
    // Later than that, and the program goes on while the unit is still at its answer.
    EXPECT_TRUE(fault.starts_with("delay:400") || session.simulator->violations().empty())
        << session.simulator->violations().front();
    if (!session.hasEnded && !session.isDone())
        recover(session, work, fault);
}

class Sweep : public testing::TestWithParam<std::string> {};

TEST_P(Sweep, WhatMustHoldHolds) {
    for (const std::string& fault : faultsAt(GetParam())) {
        SCOPED_TRACE(fault);
        run(workOf(GetParam()), fault);
    }
}

INSTANTIATE_TEST_SUITE_P(FaultsAt, Sweep, testing::ValuesIn(kPlaces), [](const auto& place) {
    return place.param + "_" + std::to_string(faultsAt(place.param).size()) + "_runs";
});

TEST(SweepPlaces, AreAllThatAGoodSessionHas) {
    for (const char* work : {"Write_", "Save_", "Verify_"}) {
        Session session(workOf(work), "");
        EXPECT_TRUE(session.enter() && session.work() && session.isDone());
        std::map<std::string, int> seen;
        for (const std::string& request : session.requests()) {
            // All sessions start as a write does.
            std::string place = (request.starts_with("3005") ? work : "Write_") + request;
            if (++seen[request] > 1)
                place += "_again" + std::to_string(seen[request]);
            EXPECT_NE(std::find(std::begin(kPlaces), std::end(kPlaces), place), std::end(kPlaces)) << place;
        }
    }
}

}  // namespace
