/// A whole session of the program, from its start to the end of a write or a save, again and again: once for every
/// place in the conversation and every fault that can happen there. Whatever goes wrong, what must hold holds.
#include "app/startup_form.h"
#include "sweep/fault_kinds.h"
#include "upgrade/main_window_fixture.h"

#include <QComboBox>
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

enum class Work { write, save };

/// A place of the conversation, as the simulator names it.
struct Place {
    Work work;
    const char* where;
};

void PrintTo(const Place& place, std::ostream* out) {
    *out << (place.work == Work::write ? "write, " : "save, ") << place.where;
}

const Place kPlaces[] = {
    {Work::write, "0501"},
    {Work::write, "0601"},
    {Work::write, "0101D40001000001"},
    {Work::write, "0101D50001000001"},
    {Work::write, "0501#2"},
    {Work::write, "0101D40001000001#2"},
    {Work::write, "300550010000"},
    {Work::write, "300551010C00"},
    {Work::write, "start"},
    {Work::write, "packet1"},
    {Work::write, "packet256"},
    {Work::write, "packet1920"},
    {Work::write, "eot"},
    {Work::write, "300554010000"},
    {Work::write, "300553010000"},
    {Work::save, "300552010C00"},
    {Work::save, "block1"},
    {Work::save, "block5"},
    {Work::save, "block9"},
    {Work::save, "eot1"},
    {Work::save, "eot2"},
    {Work::save, "300554010000"},
    {Work::save, "300553010000"},
};

/// The faults of a place: each kind once and, where the line is still there then, each time.
FaultKinds faultsAt(std::string_view where) {
    FaultKinds faults;
    for (const std::string& kind : faultKindsAt(where)) {
        faults.push_back(kind + "@" + std::string(where));
        if (!kind.starts_with("unplug"))
            faults.push_back(faults.back() + "*all");
    }
    return faults;
}

/// A session of the program, from fresh state.
class Session : public MainWindowTest {
public:
    Session(Work work, const std::string& fault) : work_(work) {
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
        writeFile("saved.bin", kOldFile);
        options.amplifierFirmware = units::makeImage("AMPKEY", 12500, 3);
        options.uploadBlocks = 9;
        window.showServiceControls();
        window.hide();
        plug({fault});
    }
    void TestBody() override {}

    void start() {
        try {
            form.load();
        } catch (const ProgramEnded&) {
            ended_ = true;
        }
    }

    /// Presses "Set" where the program offers its ports. @return whether the main window is there
    bool enter() {
        try {
            if (!window.isVisible())
                form.findChild<QPushButton*>("cmdTest")->click();
        } catch (const ProgramEnded&) {
            ended_ = true;
        }
        return window.isVisible();
    }

    /// Does the work. @return whether the program says that it has succeeded
    bool work() {
        user.said();
        if (work_ == Work::write) {
            load("image.bin");
            upgrade();
        } else {
            save("saved.bin");
        }
        expectUsableWindow();
        const QStringList said = user.said();
        EXPECT_NE(said.contains("Succeed"), said.contains("Failed")) << "each run says how it went, once";
        return said.contains("Succeed");
    }

    /// Whether the work has come to its end: the image is in the unit, or the firmware in the file.
    bool isDone() const {
        return work_ == Work::write ? unitHolds("image.bin", units::Unit::amplifier)
                                    : readFile("saved.bin") == firmware().left(9 * 128).leftJustified(kImageSize, '\0');
    }

    bool hasEnded() const { return ended_; }
    bool versionChanged() { return row(0) == "AMP-A 1.500"; }
    bool fileUntouched() const { return readFile("saved.bin") == kOldFile; }
    bool offersPorts() const { return form.isVisible() && form.findChild<QPushButton*>("cmdTest")->isVisible(); }
    qsizetype logRecords() const { return readFile("PelkLog.txt").count("[NG2]"); }
    using MainWindowTest::plug;
    using MainWindowTest::requests;
    using MainWindowTest::simulator;

private:
    void expectUsableWindow() {
        EXPECT_TRUE(window.isVisible() && window.isEnabled());
        EXPECT_EQ(window.cursor().shape(), Qt::ArrowCursor);
        EXPECT_EQ(progressDialog(), nullptr);
        EXPECT_FALSE(gTransferBusy);
        EXPECT_TRUE(gTransferState == kIdleAfterWrite || gTransferState == kIdleAfterRead) << gTransferState;
    }

    static constexpr char kOldFile[] = "old";
    const Work work_;
    frmStartUp form{window};
    bool ended_ = false;
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
    const std::string command =
        fault.substr(fault.find('@') + 1).substr(0, fault.find_first_of("#*") - fault.find('@') - 1);
    const auto asked = std::count(requests.begin(), requests.end(), command) - (fault.find("#2") != std::string::npos);
    return fault.ends_with("*all") ? asked : std::min<qsizetype>(asked, 1);
}

/// Whether a spoiled block of a read goes unnoticed: a read looks at no check byte and no block number. A reply that
/// comes too late can become the beginning of the first block.
bool escapesARead(const std::string& fault) {
    if (fault.starts_with("delay:400@300552"))
        return true;
    return fault.find("@block") != std::string::npos &&
           (fault.starts_with("garble") || fault.starts_with("noise") || fault.starts_with("repeat"));
}

}  // namespace

class Sweep : public testing::TestWithParam<Place> {
protected:
    static void run(Work work, const std::string& fault);
    static void recover(Session& session, Work work, const std::string& fault);
};

void Sweep::run(Work work, const std::string& fault) {
    QElapsedTimer clock;
    clock.start();
    Session session(work, fault);
    session.start();
    const bool entered = !session.hasEnded() && session.enter();
    const bool succeeded = entered && session.work();
    EXPECT_TRUE(entered || session.hasEnded() || session.offersPorts());
    EXPECT_LT(clock.elapsed(), 5'000);
    if (work == Work::write) {
        EXPECT_TRUE(!succeeded || waitServingEvents(3s, [&] { return session.isDone(); }));
        EXPECT_EQ(session.versionChanged(), succeeded);
    } else {
        EXPECT_TRUE(session.isDone() || session.fileUntouched() || escapesARead(fault));
    }
    if (const auto due = dueRecords(fault, session.requests())) {
        EXPECT_EQ(session.logRecords(), *due);
    }
    // Later than that, and the program goes on while the unit is still at its answer.
    if (!fault.starts_with("delay:400")) {
        for (const std::string& violation : session.simulator->violations())
            ADD_FAILURE() << violation;
    }
    if (!session.hasEnded() && !session.isDone())
        recover(session, work, fault);
}

/// What does not work the first time works as soon as the fault is over.
void Sweep::recover(Session& session, Work work, const std::string& fault) {
    const bool entered = session.enter();
    if (fault.ends_with("*all"))
        return;
    if (!fault.starts_with("unplug")) {
        // What was late the first time may still be on the line the second time.
        const auto works = [&session] { return session.work() && session.isDone(); };
        EXPECT_TRUE(session.hasEnded() || (entered && (works() || works())));
    } else if (!entered) {
        session.plug({});
        EXPECT_TRUE(session.enter()) << "the cable is back";
    } else {
        EXPECT_EQ(session.work(), work == Work::save) << "only a start of the program opens the port again";
        EXPECT_FALSE(session.isDone());
    }
}

TEST_P(Sweep, WhatMustHoldHolds) {
    for (const std::string& fault : faultsAt(GetParam().where)) {
        SCOPED_TRACE(fault);
        run(GetParam().work, fault);
    }
}

TEST(SweepPlaces, AreAllThatAGoodSessionHas) {
    for (const Work work : {Work::write, Work::save}) {
        Session session(work, "");
        session.start();
        EXPECT_TRUE(session.enter() && session.work() && session.isDone());
        std::map<std::string, int> seen;
        for (const std::string& request : session.requests()) {
            const int occurrence = ++seen[request];
            const std::string where = occurrence == 1 ? request : request + "#" + std::to_string(occurrence);
            // A save starts as a write does.
            EXPECT_TRUE(std::any_of(std::begin(kPlaces), std::end(kPlaces), [&](const Place& place) {
                return place.where == where && (place.work == work || !where.starts_with("3005"));
            })) << where;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(FaultsAt, Sweep, testing::ValuesIn(kPlaces), [](const auto& place) {
    std::string name = place.param.work == Work::write ? "Write_" : "Save_";
    for (const char* c = place.param.where; *c != '\0'; ++c)
        name += *c == '#' ? std::string("_again") : std::string(1, *c);
    return name + "_" + std::to_string(faultsAt(place.param.where).size()) + "_runs";
});
