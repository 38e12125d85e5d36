#include "support/main_window_rig.h"
#include "widgets/form_texts.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QProgressBar>
#include <QRegularExpression>
#include <QScreen>
#include <QToolTip>

#include <sys/stat.h>

TEST_F(MainWindowTest, HasItsTextsAndAccessibleNamesInBothLanguages) {
    const std::tuple<const char*, const char*, const char*> texts[] = {
        {"lblPresent", "The present firmware", "現ソフト"},
        {"lblRewriting", "The rewriteing firmware", "書換ソフト"},
        {"chkVerify", "Verification", "ベリファイ実行"},
        {"cmdLoading", "Loading file", "読込"},
        {"cmdPresent", "Save the present firmware", "現在のソフトを保存"},
        {"cmdUpgrade", "Start upgrade", "書込開始"},
        {"cmdEnd", "End", "終了"},
        {"lblService", "for service", "サービス用"},
        {"optPresent(0)", "Target: sensor amplifier", "対象: センサアンプ"},
        {"optPresent(1)", "Target: interface unit", "対象: インターフェースユニット"},
        {"lblTitle(2)", "<b>A&B</b>", "<b>A&B</b>"},
        {"lblMsg", "<b>A&B</b> is under updating to ver1.0.",
         "<b>A&B</b> のソフトウェアを ver1.0 にアップデート中です。"},
        {"prbComm", "<b>A&B</b> is under updating to ver1.0.",
         "<b>A&B</b> のソフトウェアを ver1.0 にアップデート中です。"},
        {"cmdCancel", "Cancel", "キャンセル"}};
    gFileTypeName = "<b>A&B</b>";
    gFileVersion = "1.0";
    for (gLanguage = 0; gLanguage < 2; ++gLanguage) {
        frmMain form;
        form.showServiceControls();
        form.createHidden();
        form.showProgress();
        EXPECT_EQ(form.windowTitle(), "Dravolt ver1.004");
        for (const char* name : {"lblTitle(2)", "chkVerify", "cmdEnd", "lblService"}) {
            const QStringList families = form.findChild<QWidget*>(name)->font().families();
            EXPECT_EQ(families.front(), gLanguage == 0 ? "ＭＳ Ｐゴシック" : "Arial") << name;
            EXPECT_TRUE(families.contains("IPAPGothic")) << name;
        }
        EXPECT_EQ(gFilterText.section(u'|', 0, 0), gLanguage == 0 ? "Binファイル (*.bin)" : "Bin File (*.bin)");
        EXPECT_EQ(progressDialog()->windowTitle(), gLanguage == 0 ? "ドラボルト" : "Dravolt");
        for (const auto& [name, english, japanese] : texts) {
            auto* control = form.findChild<QWidget*>(name);
            if (control == nullptr)
                control = progressDialog()->findChild<QWidget*>(name);
            const QPoint corner = control->mapTo(control->window(), QPoint());
            EXPECT_TRUE(control->window()->rect().contains({corner, control->size()})) << name;
            EXPECT_EQ(QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name),
                      gLanguage == 0 ? japanese : english);
        }
    }
}

TEST_F(MainWindowTest, StartsWithoutAnImage) {
    EXPECT_TRUE(window.isVisible());
    EXPECT_LT((window.geometry().center() - window.screen()->geometry().center()).manhattanLength(), 9);
    EXPECT_EQ(QStringList({row(0), row(1), row(2)}), QStringList({"AMP-A 0.500", "IFU-D 1.004", " "}));
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(label("lblVersion(%1)", i).y(), label("lblTitle(%1)", i).y()) << i;
    EXPECT_FALSE(button("cmdUpgrade").isEnabled());
    for (const char* hidden : {"chkVerify", "cmdPresent", "LabelWriteProtect"})
        EXPECT_TRUE(window.findChild<QWidget*>(hidden)->isHidden()) << hidden;
}

TEST_F(MainWindowTest, TheRowThatIsNotTheTargetIsGrey) {
    const auto colour = [this](int i) { return static_cast<FittedLabel&>(label("lblTitle(%1)", i)).textColour(); };
    const QColor normal = colour(2);
    QList<QImage> screen;
    for (const int target : {1, 0, 1}) {
        // Like a screen reader's "Toggle", without a click.
        choose(target);
        EXPECT_EQ(gUnitNo, target == 0 ? kSensorAmplifier : kInterfaceUnit);
        EXPECT_EQ(colour(0) != normal, target != 0);
        EXPECT_EQ(colour(1) != normal, target != 1);
        QApplication::processEvents();
        screen += window.screen()->grabWindow(window.winId()).copy(label("lblTitle(%1)", 0).geometry()).toImage();
    }
    EXPECT_NE(screen.at(0), screen.at(1)) << "the colour is painted at once";
    window.setEnabled(false);
    EXPECT_NE(colour(2), normal);
}

TEST_F(MainWindowTest, ANameThatDoesNotFitIsReadInItsToolTip) {
    const QString name = "<b>" + QString(60, 'W');
    for (const qsizetype length : {12, 60}) {
        label("lblTitle(%1)", 2).setText(name.left(length));
        QHelpEvent pointed(QEvent::ToolTip, {}, {});
        QApplication::sendEvent(&label("lblTitle(%1)", 2), &pointed);
        EXPECT_EQ(QToolTip::text().contains("&lt;b&gt;W"), length == 60);
    }
}

TEST_F(MainWindowTest, WithoutTypeTablesTheProgramEnds) {
    QFile::remove(file("TYPE.INI"));
    frmMain form;
    EXPECT_THROW(form.createHidden(), ProgramEnded);
    EXPECT_EQ(user.said(), QStringList("INI file does not exist."));
}

TEST_F(MainWindowTest, AnImageIsNamedByTheTypeTables) {
    const std::tuple<const char*, std::uint16_t, const char*> cases[] = {
        {"AMPKEY", 13500, "AMP-A 1.500"}, {"ampkey", 22050, "AMP-B 0.050"}, {"\xb1\xdd\xcc\xdf", 13500, "AMP-A 1.500"},
        {"AMPKEY", 11999, " "},           {"BOTH", 13500, "IFU-D 13.500"},  {"A-KEY-OF-SIXTEEN", 21999, "AMP-A 9.999"},
        {"AMPKEY", 32000, " "},           {"IFUKEY", 1004, "IFU-D 1.004"},  {"", 13500, "AMP-A 1.500"},
        {"IFUKEY", 0x8000, "IFU-D 0.000"}};
    for (const auto& [typeKey, version, name] : cases) {
        writeImage("amp.bin", typeKey, version);
        load("amp.bin");
        EXPECT_EQ(row(2), name) << typeKey << " " << version;
        EXPECT_TRUE(button("cmdUpgrade").isEnabled());
        EXPECT_EQ(gImageBuf, readFile("amp.bin") + '\0');
    }
    EXPECT_EQ(state(), kReady);
    EXPECT_EQ(user.said().filter("Overflow").size(), 1) << "version word above 32767";
}

TEST_F(MainWindowTest, FilesOfTheWrongSizeChangeNothing) {
    writeFile("short", QByteArray(245'759, 'x'));
    writeFile("long", QByteArray(245'761, 'x'));
    ASSERT_EQ(::mkfifo(qPrintable(file("pipe")), 0600), 0);
    load("short");
    EXPECT_FALSE(button("cmdUpgrade").isEnabled());
    for (const char* name : {"amp.bin", "short", "long", "pipe"}) {
        load(name);
        EXPECT_EQ(row(2), "AMP-A 1.500") << name;
        EXPECT_EQ(state(), kReady) << name;
    }
    EXPECT_EQ(gImageBuf, readFile("amp.bin") + '\0') << "the earlier image is kept";
    EXPECT_TRUE(user.boxes().empty());
}

TEST_F(MainWindowTest, AnImageThatCannotBeReadIsNotLoaded) {
    load("amp.bin");
    inDialog([this](QFileDialog& dialog) {
        dialog.selectFile(file("amp.bin"));
        QMetaObject::invokeMethod(&dialog, "accept");
        // After its size has been checked, before it is read.
        QTimer::singleShot(0, &window, [this] {
            EXPECT_EQ(state(), "disabled, hourglass");
            writeFile("amp.bin", "cut");
        });
    });
    button("cmdLoading").click();
    load("missing.bin");
    const QString said = user.said().join('|');
    EXPECT_TRUE(said.contains("the file ends after 3 of 245760 bytes")) << said.toStdString();
    EXPECT_TRUE(said.contains("missing.bin: there is no such file")) << said.toStdString();
    EXPECT_FALSE(button("cmdUpgrade").isEnabled());
    EXPECT_EQ(row(2), " ");
    EXPECT_EQ(state(), kReady);
}

TEST_F(MainWindowTest, UpgradesEitherUnitWithItsImage) {
    writeImage("ifu.bin", "IFUKEY", 2345);
    options.interfaceCheck = units::CheckMode::sum;
    // Attempts at one command do not count for the next; a burst of noise counts once.
    unitsWith({"response:2203@300550*2", "response:1234@300551", "lost@start", "noise:3939393939393939393939@start#2"});
    load("amp.bin");
    upgrade();
    load("ifu.bin");
    const std::size_t requested = requests().size();
    upgrade();
    EXPECT_EQ(requests().size(), requested) << "the image is the other unit's";
    choose(1);
    upgrade();
    EXPECT_EQ(firmware(units::Unit::amplifier), readFile("amp.bin"));
    EXPECT_EQ(firmware(units::Unit::interface), readFile("ifu.bin"));
    EXPECT_EQ(row(0), "AMP-A 1.500");
    EXPECT_EQ(row(1), "IFU-D 2.345");
    EXPECT_EQ(user.said(), QStringList({"Succeed", text(IDS_MSGERR_NOTADAPTED), "Succeed"}));
    EXPECT_EQ(state(), kReady);
    EXPECT_TRUE(simulator->violations().empty());
}

TEST_F(MainWindowTest, ADryRunOnlyChecks) {
    unitsWith({});
    load("amp.bin");
    window.findChild<QWidget*>("LabelWriteProtect")->show();
    upgrade();
    EXPECT_EQ(user.said(), QStringList("形式認識テストです　書込み処理はスキップします。"));
    EXPECT_EQ(requests().size(), 1U);
    EXPECT_EQ(state(), kReady);
}

TEST_F(MainWindowTest, DuringARunOnlyClosingTheWindowWorks) {
    unitsWith({"delay:1100@packet900"});
    gWaits.progressPainting = 1ms;
    load("amp.bin");
    int ends = 0;
    setProgramEnd([&ends] { ++ends; });
    QString progress;
    meanwhile("packet 899", [&] {
        QWidget* dialog = progressDialog();
        const auto* bar = dialog->findChild<QProgressBar*>();
        progress = bar->text();
        EXPECT_EQ(bar->maximum(), kImageSize);
        EXPECT_LT((dialog->geometry().center() - window.frameGeometry().center()).manhattanLength(), 9);
        EXPECT_EQ(dialog->windowHandle()->transientParent(), window.windowHandle());
        EXPECT_EQ(state(), kRunning);
        EXPECT_TRUE(dialog->isEnabled());
        EXPECT_FALSE(dialog->findChild<QPushButton*>("cmdCancel")->isVisible());
        EXPECT_EQ(dialog->findChild<QLabel*>("lblMsg")->text(), "AMP-A is under updating to ver1.500.");
        EXPECT_FALSE(dialog->close());
        button("cmdUpgrade").click();
        window.close();
    });
    upgrade();
    EXPECT_GT(ends, 0) << "closing the main window ends the program even during a transfer";
    EXPECT_TRUE(progress.contains(QRegularExpression("^[1-9].*left\\)$"))) << "after a second";
    ends = 0;
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, {});
    QApplication::sendEvent(&button("cmdEnd"), &enter);
    EXPECT_EQ(ends, 1);
}

TEST_F(MainWindowTest, TheProgressShowsTheTimeLeft) {
    const std::tuple<std::chrono::milliseconds, int, int, const char*> cases[] = {
        {999ms, 20, 30, "%p%"},
        {2s, 10, 20, "%p%"},
        {5s, 110, 1'410, "%p%  (1:05 left)"},
        {67s, 245'760, 245'760, "%p%  (0:00 left)"}};
    for (const auto& [elapsed, bytes, total, text] : cases)
        EXPECT_EQ(progressText(elapsed, /*first*/ 10, bytes, total), text);
    gLanguage = 0;
    EXPECT_EQ(progressText(30s, 0, 100, 500), "%p%（残り 2:00）");
}

TEST_F(MainWindowTest, AfterAFailedCheckTheOperatorDecides) {
    unitsWith({"response:2203@0101D4", "bcc@0101D4#2"});
    load("amp.bin");
    user.answerNext(kCancel);
    upgrade();
    EXPECT_EQ(requests().size(), 1U) << "the operator has cancelled";
    EXPECT_EQ(state(), kReady);
    EXPECT_EQ(user.boxes().back().style, kOkCancel);
    upgrade();
    EXPECT_EQ(firmware(), readFile("amp.bin")) << "OK continues as after a normal check";
    EXPECT_EQ(user.said().filter("I could not check").size(), 2);
}
