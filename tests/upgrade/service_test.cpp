#include "support/focus_route.h"
#include "upgrade/main_window_fixture.h"

#include <QCheckBox>

/// The window for service engineers.
class ServiceTest : public MainWindowTest {
protected:
    ServiceTest() { window.showServiceControls(); }

    static QPushButton* cancelButton() {
        return progressDialog() != nullptr ? progressDialog()->findChild<QPushButton*>("cmdCancel") : nullptr;
    }
};

TEST_F(ServiceTest, EveryControlHasANameARoleAndItsTurn) {
    writeImage("amp.bin", "AMPKEY", 13500);
    load("amp.bin");
    EXPECT_EQ(focusRoute(window),
              QStringList({"RadioButton: Target: sensor amplifier", "RadioButton: Target: interface unit",
                           "CheckBox: Verification", "Button: Loading file", "Button: Start upgrade", "Button: End",
                           "Button: Save the present firmware"}));
    EXPECT_EQ(nameless(window), QStringList());
    window.showProgress();
    EXPECT_EQ(focusRoute(*progressDialog()), QStringList("Button: Cancel"));
    EXPECT_EQ(nameless(*progressDialog()), QStringList());
}

TEST_F(ServiceTest, ASavedFirmwareLoadsAgainAndIsWrittenBackWithVerification) {
    writeImage("amp.bin", "AMPKEY", 13500);
    options.amplifierFirmware = units::makeImage("AMPKEY", 12500, 3);
    unitsWith({});
    save("saved.bin");
    EXPECT_TRUE(unitHolds("saved.bin", units::Unit::amplifier));
    load("saved.bin");
    EXPECT_EQ(row(2), "AMP-A 0.500");
    upgrade();
    save("saved again.bin");
    EXPECT_EQ(readFile("saved again.bin"), readFile("saved.bin"));
    load("amp.bin");
    window.findChild<QCheckBox*>("chkVerify")->click();
    upgrade();
    EXPECT_EQ(gTransferState, kIdleAfterVerification);
    EXPECT_TRUE(unitHolds("amp.bin", units::Unit::amplifier));
    EXPECT_EQ(user.texts(), QStringList({"Succeed", "Succeed", "Succeed", "Succeed"}));
    EXPECT_TRUE(simulator->violations().empty());
    const std::vector<std::string> all = requests();
    const std::vector<std::string> verified(all.end() - 8, all.end());
    const std::vector<std::string> expected{"0101D40001000001", "300550010000", "300551010C00", "300554010000",
                                            "300552010C00",     "300554010000", "300554010000", "300553010000"};
    EXPECT_EQ(verified, expected);
    EXPECT_EQ(gobjComm, nullptr) << "a verification closes the port";
    EXPECT_TRUE(window.isEnabled());

    gWaits.exchangeMark = 50ms;
    upgrade();
    EXPECT_EQ(user.texts()[4], "It is a receiving timeout error.");
    EXPECT_TRUE(user.texts()[5].startsWith("I could not check"));
    EXPECT_TRUE(window.isEnabled()) << "the next upgrade fails on the closed port, and says so";
}

TEST_F(ServiceTest, AReadBackThatDiffersInOneByteFails) {
    writeImage("amp.bin", "AMPKEY", 13500);
    window.findChild<QCheckBox*>("chkVerify")->click();
    options.sender = "sx " + file("read.bin").toStdString() + " 2>/dev/null";
    for (const qsizetype differs : {qsizetype{-1}, qsizetype{0}, kImageSize / 2, kImageSize - 1}) {
        QByteArray sentBack = readFile("amp.bin");
        if (differs >= 0)
            sentBack[differs] = static_cast<char>(sentBack[differs] ^ 1);
        writeFile("read.bin", sentBack);
        unitsWith({});
        load("amp.bin");
        upgrade();
        EXPECT_EQ(user.texts().back(), differs < 0 ? "Succeed" : "Failed") << differs;
        EXPECT_EQ(user.boxes().back().title, "Dravolt") << differs;
        EXPECT_EQ(requests().back(), "300553010000") << differs;
        EXPECT_EQ(row(0), "AMP-A 0.500") << differs;
        EXPECT_EQ(gobjComm, nullptr) << differs;
        EXPECT_TRUE(window.isEnabled()) << differs;
    }
    options.sender.clear();
    unitsWith({"response:2203@300552*3"});
    upgrade();
    EXPECT_EQ(user.texts().back(), "Failed") << "nothing has been read back";
}

TEST_F(ServiceTest, OnlyAReadCanBeCancelled) {
    writeImage("amp.bin", "AMPKEY", 13500);
    writeFile("saved.bin", "old");
    unitsWith({"delay:50@packet900"});
    QTimer probe;
    bool writing = false;
    bool reading = false;
    probe.callOnTimeout([&] {
        if (cancelButton() == nullptr)
            return;
        if (simulator->hasNoted("packet 899") && gTransferState == kIdleAfterRead) {
            writing = true;
            EXPECT_FALSE(cancelButton()->isVisible());
        } else if (gTransferState == kReceivingBlocks && simulator->hasNoted("block 200 ")) {
            reading = true;
            EXPECT_TRUE(cancelButton()->isVisible());
            cancelButton()->click();
            EXPECT_FALSE(progressDialog()->isVisible());
        }
    });
    probe.start(1ms);
    gTransferState = kIdleAfterRead;
    load("amp.bin");
    upgrade();
    gWaits.tick = 20ms;
    save("saved.bin");
    EXPECT_TRUE(writing && reading);
    EXPECT_EQ(readFile("saved.bin"), "old");
    EXPECT_TRUE(window.isEnabled());
    EXPECT_EQ(progressDialog(), nullptr);
    EXPECT_EQ(user.texts(),
              QStringList({"Succeed", "saved.bin already exists. / Do you want to replace it?", "Succeed"}));
}
