#include "app/startup_form.h"

#include "app/identification.h"
#include "app/settings.h"
#include "support/boxes.h"
#include "support/wire_rig.h"

#include <QComboBox>
#include <QPushButton>
#include <QStandardPaths>

#include <fcntl.h>
#include <sys/file.h>

class FakeMainWindow final : public MainWindowAtStart {
public:
    void createHidden() override { calls += "create"; }
    void subSetAllVersion() override { calls += "rows"; }
    void showWindow() override { calls += "show"; }
    QStringList calls;
};

class StartUp : public WireTestWith<BoxOperator> {
protected:
    StartUp() {
        writeSettings("ENGLISH", 1);
        writeFile("TYPE.INI", "[AMP_TYPE]\n0A=12000,AMP-A,x\n"
                              "[IFU_TYPE]\nSV-IFU16=D,E\nｱﾝ=D\n0123456789ABCDEF=D\n[IFU_DEFINE]\nD=IFU-D\n");
        gWaits.reply = gWaits.exchangeMark = 400ms;
    }

    void writeSettings(const char* language, int port) const {
        writeFile("Setting.INI",
                  "[OPERATION]\nLanguage=" + QByteArray(language) + "\n[IFU]\nCOM=" + QByteArray::number(port) + "\n");
    }

    /// The controls that the operator can use.
    QString offered() const {
        QString texts = ports().itemText(0) + '-' + ports().itemText(ports().count() - 1) + ' ' + ports().currentText();
        for (const auto* button : form.findChildren<QPushButton*>())
            texts += button->isVisible() ? ' ' + button->text() : QString();
        return texts;
    }

    QComboBox& ports() const { return *form.findChild<QComboBox*>("cmbCom"); }

    void chooseAndSet(int port) const {
        ports().setCurrentIndex(port - 1);
        form.findChild<QPushButton*>("cmdTest")->click();
    }

    FakeMainWindow mainWindow;
    frmStartUp form{mainWindow};
};

TEST_F(StartUp, ASecondCopyEndsBeforeItOpensThePort) {
    const QString lock = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + "/dravolt.lock";
    const int other = ::open(qPrintable(lock), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (::flock(other, LOCK_EX | LOCK_NB) != 0)
        GTEST_SKIP() << "this process already counts as the first copy";
    plug({});
    writeSettings("JAPANESE", 1);
    EXPECT_THROW(form.load(), ProgramEnded);
    EXPECT_EQ(user.said(), QStringList("既にこのアプリケーションは起動されています。"));
    EXPECT_EQ(requests(), std::vector<std::string>{});
    ::close(other);
}

TEST_F(StartUp, ContinuesOrEndsAsTheUnitsAnswer) {
    const std::vector<std::string> all{"0501", "0601", "0101D40001000001", "0101D50001000001", "0501"};
    const QString notConnected = "Unit connection state is unusual.";
    const std::tuple<const char*, int, const char*, QStringList> cases[] = {
        // fault, requests until then, rows of the units (null: the program ends), messages
        {"", 5, "AMP-A 0.500, IFU-D 1.004", {}},
        {"data:0xB1DD20202020202020202020202020205632@0501#2", 5, "AMP-A 0.500, IFU-D 2", {}},
        {"data:0123456789ABCDEFV1234567@0501#2", 5, "AMP-A 0.500, IFU-D 123456", {}},
        {"data:SV-IFU16 V9     xV 2.5 more@0501#2", 5, "AMP-A 0.500,  2.5 m", {}},
        {"data:77772EEE@0101D4", 5, "AMP-A 0.014, IFU-D 1.004", {}},
        {"data:0A0000@0101D5", 5, " 0.000, IFU-D 1.004", {}},
        {"response:1004@0601", 2, " , old ", {}},
        {"response:2204@0101D4", 3, " , old ", {}},
        {"response:2204@0501", 1, nullptr, {}},
        {"silence@0601", 2, nullptr, {}},
        {"unplug@0101D4", 3, nullptr, {"It is a receiving timeout error."}},
        {"data:00x1@0601", 2, nullptr, {"Application error. / RES : 0000"}},
        {"data:0000@0601", 2, nullptr, {notConnected}},
        {"data:0102@0601", 2, nullptr, {notConnected}},
        {"data:0002@0601", 2, nullptr, {text(IDS_MSGERR_NOTONLY_ONE_SENSOR)}}};
    for (const auto& [fault, count, rows, said] : cases) {
        frmStartUp startUp(mainWindow);
        gAmpTypeName = gAmpVersion = QString();
        gIfuTypeName = gIfuVersion = "old";
        mainWindow.calls.clear();
        // Short time-outs only where nothing comes: answers may be late on a busy machine.
        gWaits.reply = QLatin1String(fault).startsWith(QLatin1String("silence")) ? 100ms : 5s;
        plug({fault});
        testing::internal::CaptureStderr();
        if (rows == nullptr) {
            EXPECT_THROW(startUp.load(), ProgramEnded) << fault;
        } else {
            startUp.load();
            EXPECT_EQ(gAmpTypeName + ' ' + gAmpVersion + ", " + gIfuTypeName + ' ' + gIfuVersion, rows) << fault;
            EXPECT_EQ(mainWindow.calls, QStringList({"create", "rows", "show"})) << fault;
            EXPECT_FALSE(startUp.isVisible()) << fault;
        }
        const auto errors = QString::fromStdString(testing::internal::GetCapturedStderr());
        EXPECT_EQ(errors.contains("dravolt: "), said.join(u' ').contains("error.")) << fault << ": the cause";
        EXPECT_EQ(user.said(), said) << fault;
        EXPECT_EQ(requests(), std::vector<std::string>(all.begin(), all.begin() + count)) << fault;
        EXPECT_EQ(simulator->violations(), std::vector<std::string>{}) << fault;
    }
    EXPECT_EQ(user.boxes().at(4).style, kQuestion) << "two sensors";
}

TEST_F(StartUp, AFailedFirstTestOffersThePorts) {
    const std::tuple<const char*, int, const char*, const char*> cases[] = {
        {"ENGLISH", 5,
         "The present communication port(COM5)is not effective. | It is a receiving timeout error. | "
         "An error is in a setup of a COM port.Please check.",
         "COM1-COM16 COM5 Set Cancel"},
        {"ENGLISH", 17, "Application error. / RES : Setting.INI: there is no port COM17; choose one of COM1 to COM16",
         "COM1-COM16 COM5 Set Cancel"},
        {"JAPANESE", -1,
         "アプリケーションで異常が発生しました。 / RES : Setting.INI: COM-1 はありません。"
         "COM1～COM16 から選択して下さい",
         "COM1-COM16 COM5 設定 終了"}};
    linkPort(5, "/nowhere");
    for (const auto& [language, port, said, controls] : cases) {
        writeSettings(language, port);
        form.load();
        EXPECT_EQ(user.said().join(" | "), said);
        EXPECT_EQ(offered(), controls) << port;
        EXPECT_EQ(form.focusWidget(), &ports()) << port;
    }
}

TEST_F(StartUp, SetTriesTwiceThenNamesThePort) {
    plug({"silence@0501*3"});
    form.load();
    ASSERT_EQ(user.said(), QStringList{"An error is in a setup of a COM port.Please check."});
    EXPECT_EQ(user.boxes().back().style, kExclamation);
    linkPort(3, QString::fromStdString(simulator->port()));
    QTimer::singleShot(0, &form, [this] { chooseAndSet(3); });  // an impatient operator
    chooseAndSet(3);
    EXPECT_EQ(user.said(), QStringList{"The present communication port(COM3)is not effective."});
    EXPECT_EQ(requests().size(), 3U);
    linkPort(16, "/nowhere");
    chooseAndSet(16);
    EXPECT_EQ(user.said(), QStringList{"The present communication port(COM16)is not effective."});
    EXPECT_EQ(offered(), "COM1-COM16 COM16 Set Cancel");
    linkPort(7, QString::fromStdString(simulator->port()));
    chooseAndSet(7);
    EXPECT_EQ(gComPort, 7);
    EXPECT_EQ(mainWindow.calls, QStringList({"create", "rows", "show"}));
    EXPECT_FALSE(form.isVisible());
    EXPECT_TRUE(readFile("Setting.INI").contains("COM=1\n")) << "the choice holds for this run only";
}

TEST_F(StartUp, CancelAndTheCloseBoxEndTheProgram) {
    int ends = 0;
    setProgramEnd([&ends] { ++ends; });
    form.load();
    form.findChild<QPushButton*>("cmdEnd")->click();
    EXPECT_EQ(ends, 1);
    form.close();
    EXPECT_EQ(ends, 2);
}
