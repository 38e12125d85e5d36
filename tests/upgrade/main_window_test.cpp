#include "support/main_window_rig.h"

#include <QAccessible>
#include <QDir>

#include <sys/stat.h>

TEST_F(MainWindowTest, StartsWithTheAmplifierAsTargetAndNothingToWrite) {
    EXPECT_EQ(window.windowTitle(), "Dravolt ver1.004");
    EXPECT_EQ(row(0) + "," + row(1) + "," + row(2), "AMP-A 0.500,IFU-D 1.004, ");
    EXPECT_FALSE(button("cmdUpgrade").isEnabled());
    for (const char* hidden : {"chkVerify", "cmdPresent", "LabelWriteProtect"})
        EXPECT_TRUE(window.findChild<QWidget*>(hidden)->isHidden()) << hidden;
    const auto colour = [this](int i) { return static_cast<FittedLabel&>(label("lblTitle(%1)", i)).textColour(); };
    EXPECT_TRUE(gUnitNo == kSensorAmplifier && colour(0) == colour(2) && colour(1) != colour(2));
    // As a screen reader's "Toggle" does it: without a click.
    window.findChild<QRadioButton*>("optPresent(1)")->toggle();
    EXPECT_TRUE(gUnitNo == kInterfaceUnit && colour(0) != colour(2) && colour(1) == colour(2));
    gAmpTypeName.clear();
    window.subSetAllVersion();
    EXPECT_EQ(row(0), " ") << "a row without a name shows no version";
}

TEST_F(MainWindowTest, AnImageIsNamedByTheTypeTables) {
    const std::tuple<const char*, std::uint16_t, const char*> cases[] = {
        {"AMPKEY", 13500, "AMP-A 1.500"},
        {"ampkey", 22050, "AMP-B 0.050"},
        {"\xb1\xdd\xcc\xdf", 13500, "AMP-A 1.500"},
        {"AMPKEY", 11999, " "},
        {"IFUKEY", 1004, "IFU-D 1.004"},
        {"BOTH", 13500, "IFU-D 13.500"},
        {"", 13500, "AMP-A 1.500"},
        {"OTHER", 13500, " "},
        {"IFUKEY", 0x8000, "IFU-D 0.000"},
    };
    for (const auto& [key, version, name] : cases) {
        writeImage("a.bin", key, version);
        load("a.bin");
        EXPECT_EQ(row(2), name) << key << " " << version;
        EXPECT_TRUE(button("cmdUpgrade").isEnabled() && isUsable());
        EXPECT_EQ(gImageBuf, readFile("a.bin") + '\0');
    }
    ASSERT_EQ(user.boxes().size(), 1U) << "the version word that has no place";
    EXPECT_TRUE(user.said()[0].startsWith("Application error. / RES : Overflow"));
}

TEST_F(MainWindowTest, WhatIsNoImageChangesNothing) {
    writeFile("short", QByteArray(245'759, 'x'));
    writeFile("long", QByteArray(245'761, 'x'));
    ASSERT_EQ(::mkfifo(qPrintable(file("pipe")), 0600), 0);
    ASSERT_TRUE(QFile::link("/dev/zero", file("zeros")) && QDir().mkdir(file("folder")));
    writeImage("a.bin", "AMPKEY", 13500);
    for (const bool earlier : {false, true}) {
        if (earlier)
            load("a.bin");
        for (const char* name : {"short", "long", "pipe", "zeros", "folder"}) {
            load(name);
            EXPECT_EQ(button("cmdUpgrade").isEnabled(), earlier) << name;
            EXPECT_TRUE(isUsable()) << name;
        }
    }
    EXPECT_EQ(row(2), "AMP-A 1.500");
    EXPECT_EQ(gImageBuf, readFile("a.bin") + '\0') << "the earlier image stays";
    EXPECT_TRUE(user.boxes().empty());
}

TEST_F(MainWindowTest, AFileThatDoesNotExistIsReportedAndItsNameKept) {
    load("missing.bin");
    EXPECT_EQ(user.said(),
              QStringList("Application error. / RES : " + file("missing.bin") + ": there is no such file"));
    QStringList preset;
    QTimer::singleShot(0, &window, [&preset] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        preset = dialog->selectedFiles();
        dialog->reject();
    });
    button("cmdLoading").click();
    EXPECT_EQ(preset, QStringList(file("missing.bin")));
    EXPECT_FALSE(QFile::exists(qEnvironmentVariable("XDG_CONFIG_HOME") + "/QtProject.conf"))
        << "a dialog leaves nothing behind";
}

TEST_F(MainWindowTest, NamesAreReadAloudAsTheyArePainted) {
    const auto spoken = [](QWidget* widget) {
        return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
    };
    gFileTypeName = "<b>A&B</b>";
    gFileVersion = "1.004";
    window.subSetAllVersion();
    EXPECT_EQ(spoken(&label("lblTitle(%1)", 2)), gFileTypeName);
    window.showProgress();
    for (const char* name : {"lblMsg", "prbComm"})
        EXPECT_EQ(spoken(progressDialog()->findChild<QWidget*>(name)), "<b>A&B</b> is under updating to ver1.004.");
    window.releaseWindow();
}

TEST_F(MainWindowTest, UpgradesEitherUnitAndShowsItsNewVersion) {
    writeImage("amp.bin", "AMPKEY", 13500);
    writeImage("ifu.bin", "IFUKEY", 2345);
    options.interfaceCheck = units::CheckMode::sum;
    unitsWith({});
    load("amp.bin");
    upgrade();
    window.findChild<QRadioButton*>("optPresent(1)")->toggle();
    load("ifu.bin");
    upgrade();
    EXPECT_TRUE(unitHolds("amp.bin", units::Unit::amplifier) && unitHolds("ifu.bin", units::Unit::interface));
    EXPECT_EQ(row(0) + ", " + row(1), "AMP-A 1.500, IFU-D 2.345");
    EXPECT_EQ(user.said(), QStringList({"Succeed", "Succeed"}));
    EXPECT_TRUE(isUsable() && shownCursor() == Qt::ArrowCursor && progressDialog() == nullptr);
    const std::vector<std::string> expected{"0101D40001000001", "300550010000",     "300551010C00", "300554010000",
                                            "300553010000",     "0101D40001000001", "300550000000", "300551000C00",
                                            "300554000000",     "300553000000"};
    EXPECT_EQ(requests(), expected);
    EXPECT_TRUE(simulator->violations().empty());
}

TEST_F(MainWindowTest, DuringARunTheWindowIsDisabledAndOnlyClosingItActs) {
    writeImage("amp.bin", "AMPKEY", 13500);
    unitsWith({"delay:80@packet900"});
    load("amp.bin");
    bool ended = false;
    setProgramEnd([&ended] { ended = true; });
    QTimer probe;
    probe.callOnTimeout([&] {
        QWidget* dialog = progressDialog();
        if (ended || dialog == nullptr || !dialog->isVisible() || !simulator->hasNoted("packet 899"))
            return;
        EXPECT_TRUE(dialog->isEnabled() && !isUsable());
        EXPECT_EQ(shownCursor(), Qt::WaitCursor);
        EXPECT_FALSE(dialog->findChild<QPushButton*>("cmdCancel")->isVisible());
        EXPECT_EQ(dialog->findChild<QLabel*>("lblMsg")->text(), "AMP-A is under updating to ver1.500.");
        EXPECT_FALSE(dialog->close());
        button("cmdUpgrade").click();
        window.close();
    });
    probe.start(1ms);
    upgrade();
    EXPECT_TRUE(ended) << "closing the main window ends the program, also while a transfer runs";
}

TEST_F(MainWindowTest, WhatShallNotBeWrittenIsNotSent) {
    writeImage("amp.bin", "AMPKEY", 13500);
    writeImage("ifu.bin", "IFUKEY", 1004);
    unitsWith({"response:2203@0101D4*2"});
    load("ifu.bin");
    upgrade();
    EXPECT_EQ(user.said(), QStringList{"Since the loaded file is not adapted to the connected unit, firmware upgrade "
                                       "cannot be performed."});
    EXPECT_TRUE(requests().empty());
    load("amp.bin");
    user.answerNext(1);
    upgrade();
    EXPECT_EQ(requests().size(), 1U) << "the check has failed, and the operator has cancelled";
    EXPECT_EQ(user.boxes().back().buttons.size(), 2);
    EXPECT_TRUE(isUsable() && shownCursor() == Qt::ArrowCursor);
    upgrade();
    EXPECT_TRUE(unitHolds("amp.bin", units::Unit::amplifier)) << "OK goes on as after a normal check";
    EXPECT_TRUE(user.said()[0].startsWith("I could not check"));
    window.findChild<QLabel*>("LabelWriteProtect")->show();
    const std::size_t before = requests().size();
    upgrade();
    EXPECT_EQ(user.said(), QStringList{"形式認識テストです　書込み処理はスキップします。"});
    EXPECT_EQ(requests().size(), before + 1) << "a dry run ends after the check";
    EXPECT_TRUE(isUsable());
}
