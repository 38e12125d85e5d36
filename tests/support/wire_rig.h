/// Fresh state with simulated units at COM1, in English.
#pragma once

#include "link/com_port.h"
#include "link/device_commands.h"
#include "link/frame_link.h"
#include "link/waits.h"
#include "simulator/simulator.h"
#include "support/program.h"
#include "support/user.h"

#include <fcntl.h>
#include <unistd.h>
#include <utility>

using namespace std::chrono_literals;

template <class Operator>
class WireRig : public ProgramRig {
public:
    WireRig() {
        gLanguage = 1;
        gLangOffset = 10000;
        gUnitNo = kSensorAmplifier;
        // The first start character may arrive with the reply before it and be discarded with it.
        options.timing.startInterval = 50ms;
    }

    ~WireRig() {
        subPortClose();
        ::close(heldPort_);
        gblnCommBusy = false;
        gintCommRetry = 0;
        gWaits = Waits{};
    }

    /// Replaces the units by ones with `faults`; an empty fault is none.
    void plug(const std::vector<std::string>& faults) {
        subPortClose();
        gblnCommBusy = false;
        options.faults = faults;
        std::erase(options.faults, "");
        simulator = std::make_unique<units::Simulator>(options);
        ::close(std::exchange(heldPort_, ::open(simulator->port().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)));
        linkPort(1, QString::fromStdString(simulator->port()));
    }

    void unitsWith(const std::vector<std::string>& faults) {
        plug(faults);
        if (!fncPortOpen(1, QStringLiteral("38400,n,8,1")))
            throw std::runtime_error("cannot open the port of the units");
    }

    std::vector<std::string> requests() const { return simulator->requests(); }

    static QByteArray bytesOf(const units::Bytes& image) {
        return {reinterpret_cast<const char*>(image.data()), static_cast<qsizetype>(image.size())};
    }

    QByteArray firmware(units::Unit unit = units::Unit::amplifier) const { return bytesOf(simulator->firmware(unit)); }

    units::Options options;
    std::unique_ptr<units::Simulator> simulator;
    Operator user;

private:
    /// Otherwise a pty number that is freed could go to the units of a test running in parallel.
    int heldPort_ = -1;
};

template <class Operator>
class WireTestWith : public testing::Test, protected WireRig<Operator> {};

using WireTest = WireTestWith<User>;
