#include "support/main_window_rig.h"

#include <QCheckBox>

/// The window for service engineers.
class ServiceTest : public MainWindowTest {
protected:
    ServiceTest() { window.showServiceControls(); }

    void tickVerification() { window.findChild<QCheckBox*>("chkVerify")->click(); }

    /// Whether the operator could cancel, as the progress dialog shows it.
    static bool offersCancel() {
        return progressDialog() != nullptr && progressDialog()->findChild<QPushButton*>("cmdCancel")->isVisible();
    }
};

TEST_F(ServiceTest, AVerifiedRunKeepsItsUnitToItsLastCommand) {
    unitsWith({});
    load("amp.bin");
    tickVerification();
    QStringList states;
    meanwhile("300552010C00", [&] {
        choose(1);
        states += state();
    });
    upgrade();
    EXPECT_EQ(gUnitNo, kInterfaceUnit) << "chosen for the next run";
    EXPECT_EQ(user.said(), QStringList("Succeed"));
    const std::vector<std::string> expected{"0101D40001000001", "300550010000", "300551010C00", "300554010000",
                                            "300552010C00",     "300554010000", "300554010000", "300553010000"};
    EXPECT_EQ(requests(), expected);
    states.removeDuplicates();
    EXPECT_EQ(states, QStringList(kRunning));
    EXPECT_EQ(state(), kReady);
    EXPECT_EQ(gobjComm, nullptr) << "a verification closes the port";
}

TEST_F(ServiceTest, ASaveCanBeCancelledUnlikeAWrite) {
    unitsWith({"delay:300@packet900"});
    load("amp.bin");
    int looks = 0;
    meanwhile("packet 1", [&] { looks += offersCancel() ? 1'000 : 1; });
    upgrade();
    EXPECT_GT(looks, 0);
    EXPECT_LT(looks, 1'000);
    chooseInDialog("none.bin");
    button("cmdPresent").click();
    EXPECT_TRUE(offersCancel());
    EXPECT_EQ(state(), kRunning);
    progressDialog()->findChild<QPushButton*>("cmdCancel")->click();
    waitServingEvents(5s, [] { return !TransferRun::isRunning(); });
    EXPECT_TRUE(simulator->hasNoted("cancelled by the client"));
    EXPECT_EQ(state(), kReady);
}

TEST_F(ServiceTest, TheHourglassGoesAfterEverySave) {
    unitsWith({});
    tickVerification();
    save("none.bin");
    EXPECT_EQ(state(), kReady) << "with Verification ticked";
    EXPECT_EQ(user.said(), QStringList());
    EXPECT_EQ(readFile("none.bin"), "");
    subPortClose();
    save("none.bin");
    EXPECT_EQ(state(), kReady) << "on the port that a verification has closed";
}

TEST_F(ServiceTest, TheFileDialogsAreForImages) {
    QStringList offered;
    for (const char* name : {"cmdLoading", "cmdPresent"}) {
        inDialog([&offered](const QFileDialog& dialog) {
            offered << dialog.nameFilters().join('|') << dialog.defaultSuffix()
                    << (dialog.acceptMode() == QFileDialog::AcceptSave ? "save" : "open");
        });
        button(name).click();
    }
    EXPECT_EQ(offered, QStringList({"Bin File (*.bin)", "", "open", "Bin File (*.bin)", "bin", "save"}));
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
    EXPECT_EQ(state(), kReady);
}
