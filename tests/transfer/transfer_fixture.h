/// A transfer without windows: the steps, simulated units on the wire, and a screen that remembers.
#pragma once

#include "link/com_port.h"
#include "link/device_commands.h"
#include "link/frame_link.h"
#include "link/waits.h"
#include "simulator/simulator.h"
#include "support/boxes.h"
#include "support/program.h"
#include "text/string_table.h"
#include "transfer/image_buffers.h"
#include "transfer/transfer_steps.h"

using namespace std::chrono_literals;

class FakeScreen final : public TransferScreen {
public:
    void showProgress() override {
        calls += "progress";
        bytes = 0;
    }
    void setProgress(int value) override {
        EXPECT_GE(value, bytes) << "progress only rises";
        bytes = value;
    }
    void unloadProgress() override { calls += "unload"; }
    void startCommTimer() override { calls += "timer on"; }
    void stopCommTimer() override { calls += "timer off"; }
    bool isVerifyTicked() const override { return verify; }
    void enableWindow() override { calls += "enable"; }
    void setDefaultCursor() override { calls += "cursor"; }
    void showWrittenVersion() override { calls += "version"; }

    QStringList calls;
    int bytes = 0;
    bool verify = false;
};

class TransferTest : public ProgramTest {
protected:
    TransferTest() {
        gLanguage = 1;
        gLangOffset = 10000;
        gTransferBusy = false;
        gUnitNo = kSensorAmplifier;
        gintCommRetry = 0;
        image = units::makeImage("SVA-STD", 13500, 7);
        gImageBuf = QByteArray(reinterpret_cast<const char*>(image.data()), kImageSize) + '\0';
    }

    ~TransferTest() override {
        subPortClose();
        gblnCommBusy = false;
        gWaits = Waits{};
    }

    void unitsWith(std::vector<std::string> faults, units::Options options = {}) {
        options.faults = std::move(faults);
        // The first start character comes together with the reply to the start command, and is dropped with it.
        options.timing.startInterval = 50ms;
        simulator = std::make_unique<units::Simulator>(options);
        linkPort(1, QString::fromStdString(simulator->port()));
        ASSERT_TRUE(fncPortOpen(1, QStringLiteral("38400,n,8,1")));
    }

    /// A whole write, the tick that closes it included; @return the last state.
    int write() {
        const int state = steps.fncWriteStep(kWriteToStart);
        return state == kImageSent ? steps.fncWriteStep(state) : state;
    }

    bool unitHoldsImage(units::Unit unit = units::Unit::amplifier) const { return simulator->firmware(unit) == image; }

    std::vector<std::string> requests() const { return simulator->requests(); }

    units::Bytes image;
    std::unique_ptr<units::Simulator> simulator;
    FakeScreen screen;
    TransferSteps steps{screen};
    BoxOperator user;
};
