#include "support/main_window_rig.h"

#include <QCheckBox>

/// The window for service engineers.
class ServiceTest : public MainWindowTest {
protected:
    ServiceTest() {
        window.showServiceControls();
        writeImage("amp.bin", "AMPKEY", 13500);
    }
};

TEST_F(ServiceTest, ASavedFirmwareLoadsAgainAndIsWrittenBackWithVerification) {
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
    EXPECT_TRUE(unitHolds("amp.bin", units::Unit::amplifier));
    EXPECT_EQ(user.said(), QStringList({"Succeed", "Succeed", "Succeed", "Succeed"}));
    EXPECT_TRUE(simulator->violations().empty());
    const std::vector<std::string> all = requests();
    EXPECT_EQ(std::vector<std::string>(all.end() - 8, all.end()),
              (std::vector<std::string>{"0101D40001000001", "300550010000", "300551010C00", "300554010000",
                                        "300552010C00", "300554010000", "300554010000", "300553010000"}));
    EXPECT_EQ(gobjComm, nullptr) << "a verification closes the port";
}

TEST_F(ServiceTest, ARunKeepsItsUnitToItsLastCommand) {
    unitsWith({});
    load("amp.bin");
    window.findChild<QCheckBox*>("chkVerify")->click();
    bool usableMeanwhile = false;
    QTimer meddler;
    meddler.callOnTimeout([&] {
        if (!simulator->hasNoted("300552010C00") || !user.boxes().empty())
            return;
        window.findChild<QRadioButton*>("optPresent(1)")->setChecked(true);
        usableMeanwhile |= isUsable() || shownCursor() != Qt::WaitCursor;
    });
    meddler.start(1ms);
    upgrade();
    EXPECT_EQ(user.said(), QStringList("Succeed"));
    EXPECT_EQ(requests().back(), "300553010000");
    EXPECT_TRUE(gUnitNo == kInterfaceUnit && !usableMeanwhile);
    EXPECT_TRUE(isUsable() && shownCursor() == Qt::ArrowCursor);
}

TEST_F(ServiceTest, TheHourglassGoesAfterEverySave) {
    unitsWith({});
    window.findChild<QCheckBox*>("chkVerify")->click();
    save("none.bin");
    EXPECT_TRUE(isUsable() && shownCursor() == Qt::ArrowCursor) << "with Verification ticked";
    EXPECT_TRUE(user.said().empty() && readFile("none.bin").isEmpty());
    subPortClose();
    save("none.bin");
    EXPECT_TRUE(isUsable() && shownCursor() == Qt::ArrowCursor) << "on the port that a verification has closed";
}

TEST_F(ServiceTest, NothingClosesASaveBelowTheBoxOfItsCancel) {
    unitsWith({});
    gWaits.exchangeMark = 10ms;
    user.readingTime = 500ms;
    chooseInDialog("none.bin");
    button("cmdPresent").click();
    simulator.reset();
    const QPointer<QWidget> dialog = progressDialog();
    ASSERT_NE(dialog, nullptr);
    QTimer::singleShot(0, &window, [this] { user.readingTime = 0ms; });
    QTimer::singleShot(400ms, &window, [dialog] { EXPECT_NE(dialog, nullptr) << "it stands behind its box"; });
    dialog->findChild<QPushButton*>("cmdCancel")->click();
    EXPECT_EQ(user.boxes().front().title, "エラー");
    waitServingEvents(5s, [] { return !TransferRun::isRunning(); });
    EXPECT_TRUE(isUsable() && progressDialog() == nullptr);
}
