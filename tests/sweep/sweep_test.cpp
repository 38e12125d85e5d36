/// A whole session of the program, from its start to the end of a write, a save or a verified write, for every place in
/// the conversation and every fault that can happen there: the invariants hold. The clock jumps over idle time.
#include "app/startup_form.h"
#include "support/main_window_rig.h"
#include "sweep/fault_kinds.h"

#include <QCheckBox>
#include <QElapsedTimer>
#include <QRegularExpression>

#include <map>

namespace {

/// The places of a session, in the simulator's notation. All sessions begin alike; a save is the shortest.
const std::map<std::string, std::vector<std::string>> kPlaces = {
    {"Save",
     {"0501", "0601", "0101D40001000001", "0101D50001000001", "0501#2", "300552010C00", "block1", "block9", "eot1",
      "eot2", "300554010000", "300553010000"}},
    {"Write",
     {"0101D40001000001#2", "300550010000", "300551010C00", "start", "packet1", "packet256", "packet1920", "eot",
      "300554010000", "300553010000"}},
    {"Verify",
     {"300550010000", "300551010C00", "start", "packet1", "eot", "300554010000", "300552010C00", "block1", "block1920",
      "eot1", "eot2", "300554010000#2", "300554010000#3", "300553010000"}},
};

/// A session of the program, from fresh state, which comes to its work.
class ProgramSession : public MainWindowRig {
public:
    /// @param work  "Write", "Save" or "Verify", a write with verification
    ProgramSession(const std::string& work, const std::string& fault) : saves_(work == "Save") {
        const bool verifies = work == "Verify";
        waitAsInReality();
        writeFile("Setting.INI", "[OPERATION]\nLanguage=ENGLISH\n[IFU]\nCOM=1\n");
        writeFile("TYPE.INI", readFile("TYPE.INI") + "[IFU_TYPE]\nSV-IFU16=D\n");
        writeFile("saved.bin", "old");
        options.amplifierFirmware = units::makeImage("AMPKEY", 12500, 3);
        options.uploadBlocks = verifies ? 1'920 : 9;
        window.showServiceControls();
        window.findChild<QCheckBox*>("chkVerify")->setChecked(verifies);
        window.hide();
        plug({fault});
        orEnd([this] { form.load(); });
    }

    /// Presses "Set" where the program offers its ports. @return whether the main window is there
    bool enter() {
        if (!hasEnded && !window.isVisible())
            orEnd([this] { form.findChild<QPushButton*>("cmdTest")->click(); });
        return window.isVisible();
    }

    /// Does the work. @return how the program says that it went
    QStringList work() {
        user.said();
        if (saves_) {
            save("saved.bin");
        } else {
            load("amp.bin");
            upgrade();
        }
        return user.said().filter(QRegularExpression("^(Succeed|Failed)$"));
    }

    /// Whether the work has come to its end: the image is in the unit, or the firmware in the file.
    bool isDone() const {
        const auto unit = units::Unit::amplifier;
        return saves_ ? isSaved("saved.bin", unit) : readFile("amp.bin") == firmware(unit);
    }

    bool offersPorts() const { return form.isVisible() && form.findChild<QPushButton*>("cmdTest")->isVisible(); }

    bool hasEnded = false;

private:
    void orEnd(const std::function<void()>& act) {
        try {
            act();
        } catch (const ProgramEnded&) {
            hasEnded = true;
        }
    }

    const bool saves_;
    frmStartUp form{window};
};

struct Fault {
    std::string work;
    std::string place;
    std::string kind;
    bool always = false;

    std::string text() const { return kind.empty() ? "" : kind + "@" + place + (always ? "*all" : ""); }
    bool unplugs() const { return kind.starts_with("unplug"); }
};

/// The faults of a place: each kind once and, unless it unplugs the port, every time. For verified writes, which show
/// the failure of one half, and later packets, which differ only in number, a few kinds suffice.
std::vector<Fault> faultsAt(const Fault& place) {
    static const FaultKinds kFew{"lost",  "nak",           "bcc",    "garble",  "cut:70",
                                 "can:2", "response:2203", "unplug", "unplugin"};
    const bool verifies = place.work == "Verify";
    const bool fewDo = verifies || place.place == "packet256" || place.place == "packet1920";
    std::vector<Fault> faults;
    for (const std::string& kind : faultKindsAt(place.place)) {
        const Fault once{place.work, place.place, kind};
        if (fewDo && std::find(kFew.begin(), kFew.end(), kind) == kFew.end())
            continue;
        if (!verifies || once.unplugs())
            faults.push_back(once);
        if (!once.unplugs())
            faults.push_back({place.work, place.place, kind, true});
    }
    return faults;
}

bool worksAndSaysSo(ProgramSession& session) {
    const QStringList said = session.work();
    EXPECT_EQ(said.size(), 1) << "each run reports its result exactly once: " << said.join(", ").toStdString();
    EXPECT_TRUE(session.window.isVisible());
    EXPECT_EQ(session.state(), ProgramSession::kReady);
    EXPECT_FALSE(TransferRun::isRunning()) << gTransferState;
    return said.contains("Succeed");
}

/// Whether a late answer explains a violation: what the program sends before it is ignored, and at the start of a
/// download the program takes it for another answer, and may send packets to a unit that expects commands.
bool explains(const Fault& fault, const std::string& violation) {
    const bool starts = fault.place == "300550010000" || fault.place == "300551010C00";
    return fault.kind == "delay:12000" && (starts || violation.find("before the answer") != std::string::npos);
}

/// What fails the first time works as soon as the fault is over.
void recover(ProgramSession& session, const Fault& fault) {
    const bool entered = session.enter();
    const bool wantsRestart = entered && gobjComm == nullptr;  // after a verification
    if (fault.always || wantsRestart || session.hasEnded)
        return;
    if (!entered && fault.unplugs())
        session.plug({});
    EXPECT_TRUE(session.enter());
    // Only a restart reopens the port; a save reports success all the same.
    const bool works = !fault.unplugs() || !entered;
    EXPECT_EQ(worksAndSaysSo(session), works || fault.work == "Save");
    EXPECT_EQ(session.isDone(), works);
}

void sweep(const Fault& fault) {
    QElapsedTimer clock;
    clock.start();
    ProgramSession session(fault.work, fault.text());
    const bool entered = session.enter();
    const bool succeeded = entered && worksAndSaysSo(session);
    EXPECT_TRUE(entered || session.hasEnded || session.offersPorts());
    EXPECT_LT(clock.elapsed(), 130'000);
    if (fault.work == "Save") {
        // A read checks neither check bytes nor block numbers.
        const bool escapes = fault.place.starts_with("block") && (fault.kind == "garble" || fault.kind == "repeat");
        EXPECT_TRUE(session.isDone() || session.readFile("saved.bin") == "old" || escapes);
    } else {
        EXPECT_TRUE(!succeeded || waitServingEvents(30s, [&] { return session.isDone(); }));
        EXPECT_EQ(session.row(0) == "AMP-A 1.500", succeeded && fault.work == "Write");
    }
    for (const std::string& violation : session.simulator->violations())
        EXPECT_TRUE(explains(fault, violation)) << violation;
    if (!session.hasEnded && !session.isDone())
        recover(session, fault);
}

void PrintTo(const Fault& place, std::ostream* out) { *out << place.work << ' ' << place.place; }

class Sweep : public testing::TestWithParam<Fault> {};

TEST_P(Sweep, TheInvariantsHold) {
    for (const Fault& fault : faultsAt(GetParam())) {
        SCOPED_TRACE(fault.text());
        sweep(fault);
    }
}

std::vector<Fault> allPlaces() {
    std::vector<Fault> places;
    for (const auto& [work, names] : kPlaces)
        for (const std::string& name : names)
            places.push_back({work, name, {}});
    return places;
}

INSTANTIATE_TEST_SUITE_P(FaultsAt, Sweep, testing::ValuesIn(allPlaces()), [](const auto& test) {
    const QString name = QString::fromStdString(test.param.work + '_' + test.param.place).replace('#', "_again");
    return name.toStdString() + '_' + std::to_string(faultsAt(test.param).size()) + "_runs";
});

}  // namespace
