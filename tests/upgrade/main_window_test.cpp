#include "upgrade/main_window.h"

#include "app/identification.h"
#include "link/com_port.h"
#include "link/device_commands.h"
#include "link/frame_link.h"
#include "link/waits.h"
#include "simulator/simulator.h"
#include "support/boxes.h"
#include "support/program.h"
#include "system/event_wait.h"
#include "system/program_end.h"
#include "text/string_table.h"
#include "transfer/image_buffers.h"
#include "upgrade/image_loading.h"

#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>

using namespace std::chrono_literals;

class MainWindowTest : public ProgramTest {
protected:
    MainWindowTest() {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        writeFile("TYPE.INI", "[AMP_TYPE]\n0A=12000,AMP-A,x,22000,AMP-B\n"
                              "[AMP_BIN_TYPE]\nAMPKEY=0A\nBOTH=0A\nNULL=0A\n"
                              "[IFU_BIN_TYPE]\nIFUKEY=D\nBOTH=D\n"
                              "[IFU_DEFINE]\nD=IFU-D\n");
        gLanguage = 1;
        gAmpTypeName = "AMP-A";
        gAmpVersion = "0.500";
        gIfuTypeName = "IFU-D";
        gIfuVersion = "1.004";
        gFileTypeName.clear();
        gFileVersion.clear();
        gLoadFileName.clear();
        gWaits.packetAnswer = 100ms;
        window.createHidden();
        window.showWindow();
    }

    ~MainWindowTest() override {
        subPortClose();
        gblnCommBusy = false;
        gintCommRetry = 0;
        gWaits = Waits{};
    }

    void unitsWith(std::vector<std::string> faults) {
        units::Options options;
        options.faults = std::move(faults);
        options.timing.startInterval = 50ms;
        simulator = std::make_unique<units::Simulator>(options);
        linkPort(1, QString::fromStdString(simulator->port()));
        ASSERT_TRUE(fncPortOpen(1, QStringLiteral("38400,n,8,1")));
    }

    void writeImage(const QString& name, const char* key, std::uint16_t version) {
        const units::Bytes image = units::makeImage(key, version, version);
        writeFile(name, QByteArray(reinterpret_cast<const char*>(image.data()), static_cast<qsizetype>(image.size())));
    }

    /// Presses "Loading file" and chooses `name` in the dialog.
    void load(const QString& name) {
        QTimer::singleShot(0, &window, [this, name] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            dialog->selectFile(file(name));
            QMetaObject::invokeMethod(dialog, "accept");
        });
        button("cmdLoading").click();
    }

    /// Presses "Start upgrade" and lets the run come to its end.
    void upgrade() {
        button("cmdUpgrade").click();
        waitServingEvents(10s, [] { return gTransferState != kImageSent; });
    }

    QPushButton& button(const char* name) { return *window.findChild<QPushButton*>(name); }
    QString row(int index) { return label("lblTitle(%1)", index).text() + ' ' + label("lblVersion(%1)", index).text(); }
    QLabel& label(const char* name, int index) {
        return *window.findChild<QLabel*>(QString::fromLatin1(name).arg(index));
    }

    /// The progress dialog, while it is loaded.
    static QWidget* progressDialog() {
        const QWidgetList windows = QApplication::topLevelWidgets();
        const auto found =
            std::find_if(windows.begin(), windows.end(), [](const QWidget* w) { return w->objectName() == "frmWait"; });
        return found == windows.end() ? nullptr : *found;
    }

    bool unitHolds(const QString& name, units::Unit unit) const {
        const units::Bytes firmware = simulator->firmware(unit);
        return readFile(name) == QByteArray(reinterpret_cast<const char*>(firmware.data()), kImageSize);
    }

    std::unique_ptr<units::Simulator> simulator;
    frmMain window;
    BoxOperator user;
};

TEST_F(MainWindowTest, StartsWithTheAmplifierAsTargetAndNothingToWrite) {
    EXPECT_EQ(window.windowTitle(), "Dravolt ver1.004");
    EXPECT_EQ(row(0), "AMP-A 0.500");
    EXPECT_EQ(row(1), "IFU-D 1.004");
    EXPECT_EQ(row(2), " ");
    EXPECT_FALSE(button("cmdUpgrade").isEnabled());
    for (const char* hidden : {"chkVerify", "cmdPresent", "LabelWriteProtect"})
        EXPECT_TRUE(window.findChild<QWidget*>(hidden)->isHidden()) << hidden;
    const auto colourOf = [this](int index) { return label("lblTitle(%1)", index).palette().windowText().color(); };
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
    const std::vector<std::string> requests{"0101D40001000001", "300550010000",     "300551010C00", "300554010000",
                                            "300553010000",     "0101D40001000001", "300550000000", "300551000C00",
                                            "300554000000",     "300553000000"};
    EXPECT_EQ(simulator->requests(), requests);
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
        if (looked || dialog == nullptr || !dialog->isVisible() || !simulator->waitFor("packet 899", 0ms))
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
    EXPECT_TRUE(simulator->requests().empty());
    EXPECT_TRUE(window.isEnabled());
}

TEST_F(MainWindowTest, AFailedCheckAsksAndCancelSendsNothingMore) {
    writeImage("amp.bin", "AMPKEY", 13500);
    unitsWith({"response:2203@0101D4*2"});
    load("amp.bin");
    user.answerNext(1);
    upgrade();
    EXPECT_EQ(simulator->requests().size(), 1U);
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
    EXPECT_EQ(simulator->requests().size(), 1U);
    EXPECT_TRUE(window.isEnabled());
}

TEST_F(MainWindowTest, AfterAFailedSendTheNextUpgradeWorksWithoutARestart) {
    writeImage("amp.bin", "AMPKEY", 13500);
    unitsWith({"nak@packet500*10"});
    load("amp.bin");
    upgrade();
    EXPECT_EQ(user.texts(),
              QStringList({"Application error. / RES : Block 500 of 1920: sent 10 times; the unit refused "
                           "it (NAK)",
                           "Failed"}));
    EXPECT_EQ(row(0), "AMP-A 0.500") << "a failed send changes no version";
    EXPECT_TRUE(window.isEnabled());
    EXPECT_EQ(progressDialog(), nullptr);
    upgrade();
    EXPECT_EQ(user.texts().back(), "Succeed");
    EXPECT_TRUE(unitHolds("amp.bin", units::Unit::amplifier));
}
