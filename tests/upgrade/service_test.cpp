#include "support/main_window_rig.h"

#include <QCheckBox>
#include <QDir>
#include <QSettings>

class ServiceTest : public MainWindowTest {
protected:
    ServiceTest() { window.showServiceControls(); }

    static bool offersCancel() {
        return progressDialog() != nullptr && progressDialog()->findChild<QPushButton*>("cmdCancel")->isVisible();
    }
};

TEST_F(ServiceTest, AVerifiedWriteStaysWithItsUnit) {
    unitsWith({});
    load("amp.bin");
    window.findChild<QCheckBox*>("chkVerify")->click();
    QString seen;
    meanwhile("packet 1", [&] { EXPECT_TRUE(!offersCancel() || simulator->hasNoted("300552010C00")); });
    meanwhile("300552010C00", [&] {
        choose(1);
        seen = state() + (offersCancel() ? ", Cancel, " : ", ") + progressDialog()->findChild<QLabel*>()->text();
    });
    upgrade();
    EXPECT_EQ(gUnitNo, kInterfaceUnit) << "chosen for the next run";
    EXPECT_EQ(user.said(), QStringList("Succeed"));
    const std::vector<std::string> expected{"0101D40001000001", "300550010000", "300551010C00", "300554010000",
                                            "300552010C00",     "300554010000", "300554010000", "300553010000"};
    EXPECT_EQ(requests(), expected);
    EXPECT_EQ(seen, QString(kRunning) + ", Cancel, Verification...");
    EXPECT_EQ(state(), kReady);
    EXPECT_EQ(gobjComm, nullptr) << "a verification closes the port";
}

TEST_F(ServiceTest, ASaveCanBeCancelled) {
    unitsWith({});
    chooseInDialog("none.bin");
    button("cmdPresent").click();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        QKeyEvent press(QEvent::KeyPress, key, {});
        QApplication::sendEvent(progressDialog(), &press);
        EXPECT_TRUE(offersCancel()) << key;
    }
    EXPECT_EQ(state(), kRunning);
    progressDialog()->findChild<QPushButton*>("cmdCancel")->click();
    EXPECT_FALSE(offersCancel());
    waitServingEvents(5s, [] { return !TransferRun::isRunning(); });
    EXPECT_TRUE(simulator->hasNoted("cancelled by the client"));
    EXPECT_EQ(state(), kReady);
}

TEST_F(ServiceTest, TheFileDialogsOfferImages) {
    unitsWith({});
    load("amp.bin");
    save("saved.bin");
    EXPECT_TRUE(isSaved("saved.bin", units::Unit::amplifier));
    QStringList offered;
    for (const char* name : {"cmdLoading", "cmdPresent"}) {
        inDialog([&](const QFileDialog& dialog) {
            offered << dialog.nameFilters().join('|') + " ." + dialog.defaultSuffix() +
                           (dialog.acceptMode() == QFileDialog::AcceptSave ? " saves" : " opens") +
                           (dialog.testOption(QFileDialog::DontConfirmOverwrite) ? ": " : ", asks: ") +
                           dialog.selectedFiles().join('|').remove(file(""));
            EXPECT_EQ(dialog.directory(), QDir(file("")));
        });
        button(name).click();
    }
    EXPECT_EQ(offered, QStringList({"Bin File (*.bin) . opens, asks: /amp.bin",
                                    "Bin File (*.bin) .bin saves, asks: /saved.bin"}));
    EXPECT_EQ(QSettings("QtProject").fileName().left(10), "/dev/null/") << "no history";
    EXPECT_EQ(user.said(), QStringList("Succeed")) << "a cancelled dialog does nothing";
    EXPECT_EQ(state(), kReady);
}

TEST_F(ServiceTest, TabReachesEachControl) {
    load("amp.bin");
    QStringList visited;
    for (int i = 0; i < 8; ++i) {
        QWidget* focused = window.focusWidget();
        visited += focused->objectName();
        QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, {});
        QApplication::sendEvent(focused, &tab);
    }
    EXPECT_EQ(visited.join(' '),
              "cmdLoading cmdUpgrade cmdEnd cmdPresent optPresent(0) optPresent(1) chkVerify cmdLoading");
}
