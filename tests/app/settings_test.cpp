#include "app/settings.h"

#include "app/identification.h"
#include "link/device_commands.h"
#include "support/boxes.h"
#include "support/focus_route.h"
#include "support/program.h"
#include "text/string_table.h"

#include <QApplication>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QWidget>

class Settings : public ProgramTest {
protected:
    /// Has `act` done to the language dialog as soon as it stands.
    static void onDialog(const std::function<void(QWidget&)>& act) {
        QTimer::singleShot(0, qApp, [act] {
            QWidget* dialog = QApplication::activeModalWidget();
            ASSERT_TRUE(dialog != nullptr && dialog->objectName() == "frmLanguage");
            act(*dialog);
        });
    }

    static void press(const QWidget& dialog, const char* button) { dialog.findChild<QPushButton*>(button)->click(); }

    BoxOperator user;
};

TEST_F(Settings, LanguageAndPortComeFromTheFile) {
    struct {
        const char* language;
        int selector;
        const char* port;
        int number;
    } const cases[] = {
        {"JAPANESE ' remark", 0, "3", 3}, {"japanese", 1, "abc", 1}, {"x", 1, "", 1},
        {"JAPANESE", 0, "2.6", 3},        {"E", 1, "&H10", 16},      {"E", 1, "-1", -1},
    };
    for (const auto& c : cases) {
        writeFile("Setting.INI", QByteArray("[operation]\nLANGUAGE=") + c.language + "\n[ifu]\ncom=" + c.port + "\n");
        EXPECT_TRUE(fncReadSetting());
        EXPECT_EQ(gLanguage, c.selector) << c.language;
        EXPECT_EQ(gComPort, c.number) << c.port;
        EXPECT_EQ(gBaudRate, "38400");
        EXPECT_EQ(gUnitNo, kSensorAmplifier);
    }
}

TEST_F(Settings, APortAbove16BitsIsReportedAndThePortStaysOne) {
    writeFile("Setting.INI", "[OPERATION]\nLanguage=E\n[IFU]\nCOM=40000\n");
    EXPECT_FALSE(fncReadSetting());
    EXPECT_EQ(gComPort, 1);
    ASSERT_EQ(user.boxes().size(), 1U);
}

TEST_F(Settings, WithoutALanguageTheDialogAsksAndOnlyOkChangesIt) {
    onDialog([](QWidget& dialog) {
        EXPECT_EQ(dialog.windowTitle(), "Dravolt");
        EXPECT_TRUE(dialog.findChild<QRadioButton*>("optLanguage(1)")->isChecked()) << "no Japanese system";
        EXPECT_EQ(focusRoute(dialog), QStringList({"RadioButton: English", "Button: OK", "Button: Cancel"}));
        dialog.findChild<QRadioButton*>("optLanguage(0)")->click();
        press(dialog, "cmdOK");
    });
    EXPECT_TRUE(fncReadSetting());
    EXPECT_EQ(gLanguage, 0);
    onDialog([](QWidget& dialog) {
        EXPECT_TRUE(dialog.findChild<QRadioButton*>("optLanguage(1)")->isChecked()) << "the choice is not stored";
        dialog.findChild<QRadioButton*>("optLanguage(0)")->click();
        press(dialog, "cmdCancel");
    });
    EXPECT_TRUE(fncReadSetting());
    EXPECT_EQ(gLanguage, 1);
    onDialog([](QWidget& dialog) { dialog.close(); });
    EXPECT_TRUE(fncReadSetting());
    EXPECT_EQ(gLanguage, 1);
}
