/// A transfer without windows: the steps, simulated units on the wire, and a screen that remembers.
#pragma once

#include "support/units_test.h"
#include "transfer/image_buffers.h"
#include "transfer/transfer_steps.h"

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

class TransferTest : public UnitsTest {
protected:
    TransferTest() {
        gTransferBusy = false;
        gImageBuf = bytesOf(units::makeImage("SVA-STD", 13500, 7)) + '\0';
    }

    /// A whole write, the tick that closes it included; @return the last state.
    int write() {
        screen = FakeScreen{};
        const int state = steps.fncWriteStep(kWriteToStart);
        return state == kImageSent ? steps.fncWriteStep(state) : state;
    }

    bool unitHoldsImage(units::Unit unit = units::Unit::amplifier) const { return firmware(unit) + '\0' == gImageBuf; }

    FakeScreen screen;
    TransferSteps steps{screen};
};
