#include "app/startup_form.h"

#include "app/identification.h"
#include "app/settings.h"
#include "support/boxes.h"
#include "support/units_test.h"

#include <QComboBox>
#include <QPushButton>

class FakeMainWindow final : public MainWindowAtStart {
public:
    void createHidden() override { calls += "create"; }
    void subSetAllVersion() override { calls += "rows"; }
    void showWindow() override { calls += "show"; }
    QStringList calls;
};

class StartUp : public UnitsTestWith<BoxOperator> {
protected:
    StartUp() {
        writeFile("Setting.INI", "[OPERATION]\nLanguage=ENGLISH\n[IFU]\nCOM=1\n");
        writeFile("TYPE.INI", "[AMP_TYPE]\n0A=12000,AMP-A,x\n[IFU_TYPE]\nSV-IFU16=D\nｱﾝ=D\n[IFU_DEFINE]\nD=IFU-D\n");
        gWaits.reply = gWaits.exchangeMark = 150ms;
    }

    bool offersPorts() const { return form.isVisible() && form.findChild<QPushButton*>("cmdTest")->isVisible(); }

    void chooseAndSet(int port) {
        form.findChild<QComboBox*>("cmbCom")->setCurrentIndex(port - 1);
        form.findChild<QPushButton*>("cmdTest")->click();
    }

    FakeMainWindow mainWindow;
    frmStartUp form{mainWindow};
};

TEST_F(StartUp, EndsTheProgramOrHandsOverAfterWhatTheUnitsAnswer) {
    const std::vector<std::string> all{"0501", "0601", "0101D40001000001", "0101D50001000001", "0501"};
    const QString notConnected = "Unit connection state is unusual.";
    // what the units do, requests until then, rows of the units (null: the program ends), what is said
    const std::tuple<const char*, int, const char*, QStringList> cases[] = {
        {"", 5, "AMP-A 0.500, IFU-D 1.004", {}},
        {"data:0xB1DD20202020202020202020202020205632@0501#2", 5, "AMP-A 0.500, IFU-D 2", {}},
        {"response:1004@0601", 2, " ,  ", {}},
        {"response:2204@0101D4", 3, " ,  ", {}},
        {"response:2204@0501", 1, nullptr, {}},
        {"silence@0601", 2, nullptr, {}},
        {"response:1001@0101D4", 3, nullptr, {}},
        {"unplug@0101D4", 3, nullptr, {"It is a receiving timeout error."}},
        {"bcc@0101D5", 4, nullptr, {}},
        {"endcode:12@0501#2", 5, nullptr, {}},
        {"data:00 2@0601", 2, nullptr, {text(IDS_MSGERR_NOTONLY_ONE_SENSOR)}},
        {"data:00 0@0601", 2, nullptr, {notConnected}},
        {"data:01 2@0601", 2, nullptr, {notConnected}},
    };
    for (const auto& [fault, count, rows, said] : cases) {
        frmStartUp startUp(mainWindow);
        gAmpTypeName = gAmpVersion = gIfuTypeName = gIfuVersion = QString();
        mainWindow.calls.clear();
        plug({fault});
        if (rows == nullptr) {
            EXPECT_THROW(startUp.load(), ProgramEnded) << fault;
        } else {
            startUp.load();
            EXPECT_EQ(gAmpTypeName + ' ' + gAmpVersion + ", " + gIfuTypeName + ' ' + gIfuVersion, rows) << fault;
            EXPECT_EQ(mainWindow.calls, QStringList({"create", "rows", "show"})) << fault;
        }
        EXPECT_FALSE(startUp.isVisible() && rows != nullptr) << fault;
        EXPECT_EQ(user.said(), said) << fault;
        EXPECT_EQ(requests(), std::vector<std::string>(all.begin(), all.begin() + count)) << fault;
        EXPECT_TRUE(simulator->violations().empty()) << fault;
    }
}

TEST_F(StartUp, AFailedFirstTestOffersThePortsAndSetTriesTwice) {
    plug({"silence@0501*3"});
    form.load();
    EXPECT_EQ(user.said(), QStringList{"An error is in a setup of a COM port.Please check."});
    ASSERT_TRUE(offersPorts());
    EXPECT_FALSE(form.findChild<QComboBox*>("cmbBps")->isVisible());
    for (const int port : {1, 16}) {
        chooseAndSet(port);
        EXPECT_EQ(user.said().last(), QString("The present communication port(COM%1)is not effective.").arg(port));
        EXPECT_EQ(requests().size(), 3U) << "\"Set\" tests twice, and not at all where there is no port";
        ASSERT_TRUE(offersPorts());
    }
    linkPort(7, QString::fromStdString(simulator->port()));
    chooseAndSet(7);
    EXPECT_EQ(gComPort, 7);
    EXPECT_EQ(mainWindow.calls.back(), "show");
    EXPECT_TRUE(readFile("Setting.INI").contains("COM=1")) << "the choice holds for this run only";
}

TEST_F(StartUp, APortThatDoesNotOpenIsSaidAndThePortsAreOffered) {
    linkPort(1, "/nowhere");
    form.load();
    EXPECT_EQ(user.said(),
              QStringList({"The present communication port(COM1)is not effective.", "It is a receiving timeout error.",
                           "An error is in a setup of a COM port.Please check."}));
    EXPECT_TRUE(offersPorts());
    writeFile("Setting.INI", "[OPERATION]\nLanguage=JAPANESE\n[IFU]\nCOM=17\n");
    frmStartUp(mainWindow).load();
    EXPECT_TRUE(user.said()[0].contains("COM17")) << "a port that the list does not have";
}

TEST(Attributes, ModelAndVersionAreCutOutOfTheText) {
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {"SV-IFU16        V1.004", "SV-IFU16", "1.004"},
        {"VVVVVVVVVVVVVVVV12", "VVVVVVVVVVVVVVVV", "12"},
        {"  M             v9 V 2.5 more", "M", "2.5 m"},
        {"V1.0", "V1.0", ""},
        {"0123456789ABCDEFV1234567", "0123456789ABCDEF", "123456"},
    };
    for (const auto& [text, model, version] : cases) {
        EXPECT_EQ(attributeModel(text), model);
        EXPECT_EQ(attributeVersion(text), version);
    }
}
