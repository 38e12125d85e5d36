#include "app/startup_form.h"

#include "app/identification.h"
#include "app/settings.h"
#include "support/focus_route.h"
#include "support/units_test.h"

#include <QComboBox>
#include <QPushButton>

namespace {

class FakeMainWindow final : public MainWindowAtStart {
public:
    void createHidden() override { calls += "create"; }
    void subSetAllVersion() override { calls += "rows"; }
    void showWindow() override { calls += "show"; }
    QStringList calls;
};

const std::vector<std::string> kIdentification{"0501", "0601", "0101D40001000001", "0101D50001000001", "0501"};

/// The first `count` requests of an identification.
std::vector<std::string> identification(int count) {
    return {kIdentification.begin(), kIdentification.begin() + count};
}

}  // namespace

class StartUp : public UnitsTest {
protected:
    StartUp() {
        writeFile("Setting.INI", "[OPERATION]\nLanguage=ENGLISH\n[IFU]\nCOM=1\n");
        writeFile("TYPE.INI", "[AMP_TYPE]\n0A=12000,AMP-A,x\n[IFU_TYPE]\nSV-IFU16=D\n[IFU_DEFINE]\nD=IFU-D\n");
        gWaits.reply = gWaits.exchangeMark = 150ms;
        gAmpTypeName.clear();
        gIfuTypeName.clear();
    }

    bool offersPorts() const { return form.isVisible() && form.findChild<QPushButton*>("cmdTest")->isVisible(); }

    void chooseAndSet(int port) {
        form.findChild<QComboBox*>("cmbCom")->setCurrentIndex(port - 1);
        form.findChild<QPushButton*>("cmdTest")->click();
    }

    FakeMainWindow mainWindow;
    frmStartUp form{mainWindow};
};

TEST_F(StartUp, IdentifiesBothUnitsAndHandsOver) {
    plug({});
    form.load();
    EXPECT_EQ(requests(), kIdentification);
    EXPECT_EQ(mainWindow.calls, QStringList({"create", "rows", "show"}));
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(gAmpTypeName + " " + gAmpVersion, "AMP-A 0.500");
    EXPECT_EQ(gIfuTypeName, "IFU-D");
    EXPECT_EQ(gIfuVersion, "1.004");
    EXPECT_EQ(gUnitNo, kSensorAmplifier);
    EXPECT_TRUE(user.boxes().empty());
    EXPECT_TRUE(simulator->violations().empty());
}

TEST_F(StartUp, AFailedFirstTestOffersThePortsAndSetTriesTwice) {
    plug({"silence@0501*3"});
    form.load();
    EXPECT_EQ(user.texts(), QStringList{"An error is in a setup of a COM port.Please check."});
    ASSERT_TRUE(offersPorts());
    EXPECT_FALSE(form.findChild<QComboBox*>("cmbBps")->isVisible());
    EXPECT_EQ(focusRoute(form), QStringList({"ComboBox: COM PORT", "Button: Set", "Button: Cancel"}));
    EXPECT_EQ(nameless(form), QStringList());
    EXPECT_EQ(form.findChild<QComboBox*>("cmbCom")->currentText(), "COM1");

    chooseAndSet(1);
    EXPECT_EQ(user.texts().back(), "The present communication port(COM1)is not effective.");
    EXPECT_EQ(requests().size(), 3U) << "\"Set\" tests twice";
    chooseAndSet(16);
    EXPECT_EQ(user.texts().back(), "The present communication port(COM16)is not effective.") << "no such port";
    EXPECT_EQ(requests().size(), 3U);
    ASSERT_TRUE(offersPorts());

    linkPort(7, QString::fromStdString(simulator->port()));
    chooseAndSet(7);
    EXPECT_EQ(gComPort, 7);
    EXPECT_EQ(mainWindow.calls.back(), "show");
    EXPECT_TRUE(readFile("Setting.INI").contains("COM=1")) << "the choice holds for this run only";
}

TEST_F(StartUp, APortThatDoesNotOpenGivesThreeMessagesThenTheChoice) {
    linkPort(1, "/nowhere");
    form.load();
    EXPECT_EQ(user.texts(),
              QStringList({"The present communication port(COM1)is not effective.", "It is a receiving timeout error.",
                           "An error is in a setup of a COM port.Please check."}));
    EXPECT_TRUE(offersPorts());
}

TEST_F(StartUp, APortThatTheListLacksIsReportedThenTheChoiceShown) {
    writeFile("Setting.INI", "[OPERATION]\nLanguage=JAPANESE\n[IFU]\nCOM=17\n");
    form.load();
    ASSERT_EQ(user.boxes().size(), 1U);
    EXPECT_TRUE(user.texts().front().startsWith("アプリケーションで異常が発生しました。 / RES : "))
        << qPrintable(user.texts().front());
    EXPECT_TRUE(offersPorts());
    EXPECT_EQ(form.findChild<QPushButton*>("cmdEnd")->text(), "終了");
}

TEST_F(StartUp, WhatLeavesNothingSensibleToDoEndsTheProgram) {
    const QString twoSensors = "Since the sensor connected is two or more sets, firmware upgrade cannot be performed. "
                               "Connect only one sensor and reboot the application software after resetting sensor "
                               "power supply.";
    const QString notConnected = "Unit connection state is unusual.";
    units::Options twoConnected;
    twoConnected.sensors = 2;
    units::Options noneConnected;
    noneConnected.sensors = 0;
    units::Options faulty = twoConnected;
    faulty.status = "01";
    struct {
        const char* fault;
        units::Options options;
        QStringList said;
        int requests;
    } const cases[] = {
        {"response:2204@0501", {}, {}, 1},      {"silence@0601", {}, {}, 2},
        {"response:1001@0101D4", {}, {}, 3},    {"bcc@0101D5", {}, {}, 4},
        {"endcode:12@0501#2", {}, {}, 5},       {"", twoConnected, {twoSensors}, 2},
        {"", noneConnected, {notConnected}, 2}, {"", faulty, {notConnected}, 2},
    };
    for (const auto& c : cases) {
        frmStartUp startUp(mainWindow);
        options = c.options;
        plug({c.fault});
        EXPECT_THROW(startUp.load(), ProgramEnded) << c.fault;
        EXPECT_EQ(user.said(), c.said) << c.fault;
        EXPECT_EQ(requests(), identification(c.requests)) << c.fault;
    }
}

TEST_F(StartUp, SomeRefusalsOnlyShortenTheIdentification) {
    struct {
        const char* fault;
        int requests;
        const char* amplifier;
    } const cases[] = {{"response:1004@0601", 2, ""}, {"response:2204@0101D4", 3, ""}};
    for (const auto& c : cases) {
        frmStartUp startUp(mainWindow);
        plug({c.fault});
        startUp.load();
        EXPECT_EQ(requests(), identification(c.requests)) << c.fault;
        EXPECT_EQ(gAmpTypeName, c.amplifier);
        EXPECT_EQ(mainWindow.calls.back(), "show");
    }
    EXPECT_TRUE(user.boxes().empty());
}

TEST_F(StartUp, AnUnpluggedCableIsSaid) {
    plug({"unplug@0101D4"});
    EXPECT_THROW(form.load(), ProgramEnded);
    EXPECT_EQ(user.said(), QStringList{"It is a receiving timeout error."});
    plug({"unplug@0501"});
    form.load();
    EXPECT_EQ(user.said(),
              QStringList({"It is a receiving timeout error.", "An error is in a setup of a COM port.Please check."}));
    EXPECT_TRUE(offersPorts());
}

TEST(Attributes, ModelAndVersionAreCutOutOfTheText) {
    struct {
        const char* text;
        const char* model;
        const char* version;
    } const cases[] = {
        {"SV-IFU16        V1.004", "SV-IFU16", "1.004"},
        {"VVVVVVVVVVVVVVVV12", "VVVVVVVVVVVVVVVV", "12"},
        {"  M             v9 V 2.5 more", "M", "2.5 m"},
        {"V1.0", "V1.0", ""},
        {"SHORT          ", "SHORT", ""},
        {"0123456789ABCDEFV1234567", "0123456789ABCDEF", "123456"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(attributeModel(c.text), c.model);
        EXPECT_EQ(attributeVersion(c.text), c.version);
    }
}
