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
        EXPECT_TRUE(value >= bytes && value <= kImageSize) << "progress only rises, up to the size of an image";
        bytes = value;
    }
    void unloadProgress() override { calls += "unload"; }
    void startCommTimer() override { calls += "timer on"; }
    void stopCommTimer() override { calls += "timer off"; }
    void enableWindow() override { calls += "enable"; }
    void setDefaultCursor() override { calls += "cursor"; }
    void showWrittenVersion(int) override { calls += "version"; }

    QStringList calls;
    int bytes = 0;
};

class TransferTest : public UnitsTest {
protected:
    TransferTest() { gImageBuf = bytesOf(units::makeImage("SVA-STD", 13500, 7)) + '\0'; }

    bool unitHoldsImage() const { return firmware() + '\0' == gImageBuf; }

    FakeScreen screen;
    TransferSteps steps{screen};
};
