/// Soak run: upgrades and saves in one process, with random faults; nothing may grow.
///
/// usage: soak ROUNDS SEED
#include "support/main_window_rig.h"
#include "sweep/fault_kinds.h"

#include <QAbstractEventDispatcher>
#include <QDir>

#include <cstdio>
#include <fstream>
#include <random>

namespace {

/// What must not grow.
struct Footprint {
    long kilobytes = 0;   ///< resident memory
    qsizetype files = 0;  ///< open descriptors
    qsizetype windows = 0;
    int wakeUps = 0;  ///< in an idle half second: shows forgotten timers
};

long residentKilobytes() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (long kilobytes = 0; word == "VmRSS:" && status >> kilobytes)
            return kilobytes;
    throw std::runtime_error("no VmRSS in /proc/self/status");
}

void print(const char* when, const Footprint& now) {
    std::printf("%s: %ld kB, %d descriptors, %d windows, %d wake-ups while idle\n", when, now.kilobytes,
                static_cast<int>(now.files), static_cast<int>(now.windows), now.wakeUps);
}

class Soak : public MainWindowRig {
public:
    explicit Soak(unsigned seed) : random_(seed) {
        waitAsInReality();
        window.showServiceControls();
    }

    Footprint footprint() {
        // Leftovers of the last round must not count.
        subPortClose();
        simulator.reset();
        Footprint now;
        const auto counting = QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake,
                                               [&now] { ++now.wakeUps; });
        waitServingEvents(500ms, [] { return false; });
        QObject::disconnect(counting);
        now.kilobytes = residentKilobytes();
        now.files = QDir(QStringLiteral("/proc/self/fd"))
                        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
                        .size();
        now.windows = QApplication::topLevelWidgets().size();
        return now;
    }

    /// One upgrade or save of either unit, with a fault in two of three rounds.
    void round() {
        const bool amplifier = chance(2);
        const bool write = chance(2);
        options.amplifierCheck = options.interfaceCheck = chance(2) ? units::CheckMode::crc : units::CheckMode::sum;
        options.uploadBlocks = 1 + below(100);
        const std::string fault = chance(3) ? "" : randomFault(write, amplifier ? "01" : "00");
        const units::Unit unit = amplifier ? units::Unit::amplifier : units::Unit::interface;
        unitsWith({fault});
        window.findChild<QRadioButton*>(amplifier ? "optPresent(0)" : "optPresent(1)")->click();
        writeFile("image.bin",
                  bytesOf(units::makeImage(amplifier ? "AMPKEY" : "IFUKEY", 13500, static_cast<unsigned>(random_()))));
        user.said();
        QFile::remove(file("saved.bin"));
        if (write) {
            load("image.bin");
            upgrade();
        } else {
            save("saved.bin");
        }
        judge(write, fault, unit);
    }

    int succeeded = 0;
    int failed = 0;
    std::vector<std::string> wrong;  ///< what must not happen

private:
    void judge(bool write, const std::string& fault, units::Unit unit) {
        const bool success = user.said().contains("Succeed");
        ++(success ? succeeded : failed);
        const auto require = [&](bool holds, const char* what) {
            if (!holds)
                wrong.push_back((write ? "write, " : "save, ") + fault + ": " + what);
        };
        require(state() == kReady && !TransferRun::isRunning(), "the window is not usable");
        const auto done = [&] { return write ? readFile("image.bin") == firmware(unit) : isSaved("saved.bin", unit); };
        if (fault.empty())
            require(success && done(), "fails without a fault");
        else if (write && success)
            require(waitServingEvents(30s, done), "succeeds without the image");
    }

    std::string randomFault(bool write, const std::string& unit) {
        const std::vector<std::string> places =
            write ? std::vector<std::string>{"300550" + unit + "0000",
                                             "300551" + unit + "0C00",
                                             "start",
                                             "eot",
                                             "packet" + std::to_string(1 + below(1920)),
                                             "300554" + unit + "0000"}
                  : std::vector<std::string>{"300552" + unit + "0C00", "eot1", "eot2",
                                             "block" + std::to_string(1 + below(options.uploadBlocks)),
                                             "300553" + unit + "0000"};
        const std::string& place = places[below(static_cast<unsigned>(places.size()))];
        const FaultKinds kinds = faultKindsAt(place);
        const std::string& kind = kinds[below(static_cast<unsigned>(kinds.size()))];
        return kind + "@" + place + (chance(4) && !kind.starts_with("unplug") ? "*all" : "");
    }

    unsigned below(unsigned limit) { return std::uniform_int_distribution<unsigned>(0, limit - 1)(random_); }
    bool chance(unsigned oneIn) { return below(oneIn) == 0; }

    std::mt19937 random_;
};

}  // namespace

int main(int argc, char* argv[]) {
    const QTemporaryDir runtimeFolder;
    qputenv("XDG_RUNTIME_DIR", runtimeFolder.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = QCoreApplication::arguments();
    const int rounds = arguments.value(1).toInt();
    const unsigned seed = arguments.value(2).toUInt();
    constexpr int kWarmUp = 20;
    constexpr long kMostGrowth = 2'048;
    Soak soak(seed);
    Footprint before;
    for (int i = 0; i < rounds + kWarmUp; ++i) {
        if (i == kWarmUp)
            before = soak.footprint();
        soak.round();
    }
    const Footprint after = soak.footprint();
    print("after 20 rounds", before);
    print("at the end", after);
    std::printf("%d rounds with seed %u: %d succeeded, %d failed\n", rounds + kWarmUp, seed, soak.succeeded,
                soak.failed);
    for (const std::string& what : soak.wrong)
        std::printf("WRONG: %s\n", what.c_str());
    const bool grows = after.kilobytes > before.kilobytes + kMostGrowth || after.files > before.files ||
                       after.windows > before.windows || after.wakeUps > before.wakeUps + 1;
    if (grows)
        std::printf("WRONG: something grows\n");
    return grows || !soak.wrong.empty() ? 1 : 0;
}
