/// Fresh state with simulated units at COM1, in English.
#pragma once

#include "link/com_port.h"
#include "link/device_commands.h"
#include "link/frame_link.h"
#include "link/waits.h"
#include "simulator/simulator.h"
#include "support/program.h"
#include "support/user.h"

using namespace std::chrono_literals;

/// @tparam Operator  who answers the message boxes: User, or BoxOperator where boxes are windows
template <class Operator>
class UnitsTestWith : public ProgramTest {
protected:
    UnitsTestWith() {
        gLanguage = 1;
        gLangOffset = 10000;
        gUnitNo = kSensorAmplifier;
        // The first start character may come together with the reply before it, and is dropped with it then.
        options.timing.startInterval = 50ms;
    }

    ~UnitsTestWith() override {
        subPortClose();
        gblnCommBusy = false;
        gintCommRetry = 0;
        gWaits = Waits{};
    }

    /// Plugs units in that show `faults`, in the place of those that are there; an empty fault is none.
    void plug(const std::vector<std::string>& faults) {
        subPortClose();
        gblnCommBusy = false;
        options.faults = faults;
        std::erase(options.faults, "");
        simulator = std::make_unique<units::Simulator>(options);
        linkPort(1, QString::fromStdString(simulator->port()));
    }

    /// The same, and opens their port.
    void unitsWith(const std::vector<std::string>& faults) {
        plug(faults);
        ASSERT_TRUE(fncPortOpen(1, QStringLiteral("38400,n,8,1")));
    }

    std::vector<std::string> requests() const { return simulator->requests(); }

    static QByteArray bytesOf(const units::Bytes& image) {
        return {reinterpret_cast<const char*>(image.data()), static_cast<qsizetype>(image.size())};
    }

    QByteArray firmware(units::Unit unit = units::Unit::amplifier) const { return bytesOf(simulator->firmware(unit)); }

    units::Options options;
    std::unique_ptr<units::Simulator> simulator;
    Operator user;
};

using UnitsTest = UnitsTestWith<User>;
