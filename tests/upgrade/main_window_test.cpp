#include "upgrade/main_window_fixture.h"

#include <QDir>

#include <cmath>
#include <malloc.h>
#include <sys/stat.h>

TEST_F(MainWindowTest, StartsWithTheAmplifierAsTargetAndNothingToWrite) {
    EXPECT_EQ(window.windowTitle(), "Dravolt ver1.004");
    EXPECT_EQ(row(0), "AMP-A 0.500");
    EXPECT_EQ(row(1), "IFU-D 1.004");
    EXPECT_EQ(row(2), " ");
    EXPECT_FALSE(button("cmdUpgrade").isEnabled());
    for (const char* hidden : {"chkVerify", "cmdPresent", "LabelWriteProtect"})
        EXPECT_TRUE(window.findChild<QWidget*>(hidden)->isHidden()) << hidden;
    const auto colourOf = [this](int index) {
        return static_cast<FittedLabel&>(label("lblTitle(%1)", index)).textColour();
    };
    EXPECT_EQ(gUnitNo, kSensorAmplifier);
    EXPECT_EQ(colourOf(0), colourOf(2));
    EXPECT_NE(colourOf(1), colourOf(2));
    window.findChild<QRadioButton*>("optPresent(1)")->click();
    EXPECT_EQ(gUnitNo, kInterfaceUnit);
    EXPECT_NE(colourOf(0), colourOf(2));
    EXPECT_EQ(colourOf(1), colourOf(2));
    gAmpTypeName.clear();
    window.subSetAllVersion();
    EXPECT_EQ(row(0), " ") << "a row without a name shows no version";
}

/// Luminance as the rules for accessible text take it, 0 to 1.
static double luminance(const QColor& colour) {
    const auto linear = [](double c) { return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

TEST_F(MainWindowTest, GreyTextCanBeReadOnALightAndOnADarkDesktop) {
    auto& grey = static_cast<FittedLabel&>(label("lblTitle(%1)", 1));
    for (const QColor ground : {QColor(239, 239, 239), QColor(255, 255, 255), QColor(42, 46, 50), QColor(0, 0, 0)}) {
        const bool light = ground.lightness() > 127;
        QPalette desktop(ground);
        desktop.setColor(QPalette::WindowText, light ? Qt::black : Qt::white);
        window.setPalette(desktop);
        const double a = luminance(grey.textColour()) + 0.05;
        const double b = luminance(ground) + 0.05;
        EXPECT_GE(std::max(a, b) / std::min(a, b), 4.5) << ground.name().toStdString();
        EXPECT_NE(grey.textColour(), desktop.color(QPalette::WindowText));
    }
}

TEST_F(MainWindowTest, AnImageIsNamedByTheTypeTables) {
    struct {
        const char* key;
        std::uint16_t version;
        const char* row;
    } const cases[] = {
        {"AMPKEY", 13500, "AMP-A 1.500"},
        {"ampkey", 22050, "AMP-B 0.050"},
        {"AMPKEY", 11999, " "},
        {"IFUKEY", 1004, "IFU-D 1.004"},
        {"BOTH", 13500, "IFU-D 13.500"},
        {"", 13500, "AMP-A 1.500"},
        {"OTHER", 13500, " "},
    };
    for (const auto& c : cases) {
        writeImage("a.bin", c.key, c.version);
        load("a.bin");
        EXPECT_EQ(row(2), c.row) << c.key << " " << c.version;
        EXPECT_TRUE(button("cmdUpgrade").isEnabled());
        EXPECT_TRUE(window.isEnabled());
        EXPECT_EQ(gImageBuf, readFile("a.bin") + '\0');
    }
    EXPECT_TRUE(user.boxes().empty());
}

TEST_F(MainWindowTest, AFileOfAnotherLengthChangesNothing) {
    writeFile("short.bin", QByteArray(245'759, 'x'));
    load("short.bin");
    EXPECT_FALSE(button("cmdUpgrade").isEnabled());
    writeImage("a.bin", "AMPKEY", 13500);
    load("a.bin");
    writeFile("long.bin", QByteArray(245'761, 'x'));
    load("long.bin");
    EXPECT_EQ(row(2), "AMP-A 1.500");
    EXPECT_EQ(gImageBuf, readFile("a.bin") + '\0') << "the earlier image stays";
    EXPECT_TRUE(button("cmdUpgrade").isEnabled());
    EXPECT_TRUE(user.boxes().empty());
}

TEST_F(MainWindowTest, WhatIsNoFileIsNoImageAndHoldsNobodyUp) {
    ASSERT_EQ(::mkfifo(qPrintable(file("pipe")), 0600), 0);
    ASSERT_TRUE(QFile::link("/dev/zero", file("zeros")));
    ASSERT_TRUE(QDir().mkdir(file("folder")));
    for (const char* name : {"pipe", "zeros", "folder"}) {
        load(name);
        EXPECT_FALSE(button("cmdUpgrade").isEnabled()) << name;
        EXPECT_TRUE(window.isEnabled()) << name;
    }
    EXPECT_TRUE(user.boxes().empty());
}

/// Does something to a window's image file at the moment when the window has seen its length and is going to read it.
class Meddler : public QObject {
public:
    Meddler(frmMain& window, std::function<void()> meddle) : window_(window), meddle_(std::move(meddle)) {
        window_.installEventFilter(this);
    }

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::EnabledChange && !window_.isEnabled())
            meddle_();
        return false;
    }

private:
    frmMain& window_;
    std::function<void()> meddle_;
};

TEST_F(MainWindowTest, AFileThatChangesWhileItIsReadIsReportedUnlessItIsAllThere) {
    QFile image(file("a.bin"));
    const QString error = "Application error. / RES : " + image.fileName() + ": ";
    const std::pair<std::function<bool()>, QString> cases[] = {
        {[&] { return image.resize(100'000); }, error + "the file ends after 100000 of 245760 bytes"},
        {[&] { return image.remove(); }, error + "No such file or directory"},
        {[&] { return image.resize(kImageSize + 1); }, {}},
    };
    for (const auto& [meddle, said] : cases) {
        writeImage("a.bin", "AMPKEY", 13500);
        const Meddler meddler(window, [&meddle = meddle] { EXPECT_TRUE(meddle()); });
        load("a.bin");
        EXPECT_EQ(user.said().join('|'), said);
        EXPECT_EQ(row(2), said.isEmpty() ? "AMP-A 1.500" : " ");
        EXPECT_EQ(button("cmdUpgrade").isEnabled(), said.isEmpty());
        EXPECT_TRUE(window.isEnabled());
    }
}

TEST_F(MainWindowTest, LoadsInARowLeaveNothingBehind) {
    writeImage("a.bin", "AMPKEY", 13500);
    const auto loadOften = [this](int times) {
        for (int i = 0; i < times; ++i)
            load("a.bin");
    };
    const auto descriptors = [] { return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size(); };
    loadOften(20);
    const qsizetype descriptorsBefore = descriptors();
    const std::size_t memoryBefore = ::mallinfo2().uordblks;
    loadOften(200);
    EXPECT_EQ(descriptors(), descriptorsBefore);
    EXPECT_LT(::mallinfo2().uordblks, memoryBefore + 100'000);
    EXPECT_EQ(row(2), "AMP-A 1.500");
}

TEST_F(MainWindowTest, AVersionWordThatOverflowsIsReportedAndCountsAsZero) {
    writeImage("a.bin", "IFUKEY", 0x8000);
    load("a.bin");
    ASSERT_EQ(user.boxes().size(), 1U);
    EXPECT_TRUE(user.texts()[0].startsWith("Application error. / RES : Overflow")) << qPrintable(user.texts()[0]);
    EXPECT_EQ(row(2), "IFU-D 0.000");
}

TEST_F(MainWindowTest, UpgradesEitherUnitAndShowsItsNewVersion) {
    writeImage("amp.bin", "AMPKEY", 13500);
    writeImage("ifu.bin", "IFUKEY", 2345);
    unitsWith({});
    load("amp.bin");
    upgrade();
    EXPECT_TRUE(unitHolds("amp.bin", units::Unit::amplifier));
    EXPECT_EQ(row(0), "AMP-A 1.500");
    window.findChild<QRadioButton*>("optPresent(1)")->click();
    load("ifu.bin");
    upgrade();
    EXPECT_TRUE(unitHolds("ifu.bin", units::Unit::interface));
    EXPECT_EQ(row(0) + ", " + row(1), "AMP-A 1.500, IFU-D 2.345");
    EXPECT_EQ(user.texts(), QStringList({"Succeed", "Succeed"}));
    EXPECT_TRUE(window.isEnabled());
    EXPECT_EQ(window.cursor().shape(), Qt::ArrowCursor);
    EXPECT_EQ(progressDialog(), nullptr);
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
    bool looked = false;
    probe.callOnTimeout([&] {
        QWidget* dialog = progressDialog();
        if (looked || dialog == nullptr || !dialog->isVisible() || !simulator->hasNoted("packet 899"))
            return;
        looked = true;
        EXPECT_FALSE(window.isEnabled());
        EXPECT_TRUE(dialog->isEnabled());
        EXPECT_FALSE(dialog->findChild<QPushButton*>("cmdCancel")->isVisible());
        EXPECT_EQ(dialog->findChild<QLabel*>("lblMsg")->text(), "AMP-A is under updating to ver1.500.");
        EXPECT_FALSE(dialog->close());
        qobject_cast<QDialog*>(dialog)->done(0);
        button("cmdUpgrade").click();
        window.close();
    });
    probe.start(1ms);
    upgrade();
    EXPECT_TRUE(looked);
    EXPECT_TRUE(ended) << "closing the main window ends the program, also while a transfer runs";
}

TEST_F(MainWindowTest, AnImageThatDoesNotFitIsRefusedBeforeAnythingIsSent) {
    writeImage("ifu.bin", "IFUKEY", 1004);
    unitsWith({});
    load("ifu.bin");
    upgrade();
    EXPECT_EQ(user.texts(), QStringList{"Since the loaded file is not adapted to the connected unit, firmware upgrade "
                                        "cannot be performed."});
    EXPECT_TRUE(requests().empty());
    EXPECT_TRUE(window.isEnabled());
}

TEST_F(MainWindowTest, AFailedCheckAsksAndCancelSendsNothingMore) {
    writeImage("amp.bin", "AMPKEY", 13500);
    unitsWith({"response:2203@0101D4*2"});
    load("amp.bin");
    user.answerNext(1);
    upgrade();
    EXPECT_EQ(requests().size(), 1U);
    EXPECT_TRUE(window.isEnabled());
    EXPECT_EQ(window.cursor().shape(), Qt::ArrowCursor);
    upgrade();
    EXPECT_TRUE(unitHolds("amp.bin", units::Unit::amplifier)) << "OK goes on as after a normal check";
    EXPECT_TRUE(user.texts()[0].startsWith("I could not check"));
    EXPECT_EQ(user.texts()[1], user.texts()[0]);
    EXPECT_EQ(user.boxes()[0].buttons.size(), 2);
    EXPECT_EQ(user.texts()[2], "Succeed");
}

TEST_F(MainWindowTest, ADryRunSendsNothingAfterTheCheck) {
    writeImage("amp.bin", "AMPKEY", 13500);
    unitsWith({});
    load("amp.bin");
    window.findChild<QLabel*>("LabelWriteProtect")->show();
    upgrade();
    EXPECT_EQ(user.texts(), QStringList{"形式認識テストです　書込み処理はスキップします。"});
    EXPECT_EQ(requests().size(), 1U);
    EXPECT_TRUE(window.isEnabled());
}
