#include "app/settings.h"

#include "support/program.h"
#include "support/user.h"

#include <QAbstractButton>
#include <QApplication>
#include <QGroupBox>
#include <QTimer>

#include <iostream>
#include <unistd.h>

class Settings : public ProgramTest {
protected:
    User user;
};

TEST_F(Settings, LanguageAndPortComeFromTheFile) {
    const std::tuple<const char*, int, const char*, int> cases[] = {
        {"JAPANESE ' remark", 0, "3", 3},
        {"japanese", 1, "abc", 1},
        {"E", 1, "-1", -1},
        {"E", 1, "1 6", 1},
    };
    for (const auto& [language, selector, port, number] : cases) {
        writeFile("Setting.INI", QByteArray("[operation]\nLANGUAGE=") + language + "\n[ifu]\ncom=" + port + "\n");
        EXPECT_TRUE(fncReadSetting()) << port;
        EXPECT_EQ(gLanguage, selector) << language;
        EXPECT_EQ(gComPort, number) << port;
    }
    writeFile("Setting.INI", "[OPERATION]\nLanguage=JAPANESE\n[IFU]\nCOM=4294967296\n");
    EXPECT_FALSE(fncReadSetting());
    EXPECT_EQ(user.said().filter(": 4294967296 ").size(), 1);
}

/// Starts anew for each operator, as Qt asks for the language of the system only once.
class LanguageDialogDeathTest : public Settings {
protected:
    LanguageDialogDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    ~LanguageDialogDeathTest() override { qunsetenv("LC_ALL"); }

    /// What the operator sees in the dialog: the preselected language between stars, the focus in brackets.
    static QString seen(const QWidget& dialog) {
        QStringList texts{dialog.windowTitle(), dialog.findChild<QGroupBox*>()->title()};
        for (const auto* button : dialog.findChildren<QAbstractButton*>()) {
            const QString mark = button->isChecked() ? "*" : "";
            texts += mark + button->text() + mark;
            if (button == dialog.focusWidget())
                texts.back() = '[' + texts.back() + ']';
        }
        return texts.join(u' ');
    }

    /// Presses the buttons with these names and says what was seen and what came of it; fails if settings were written.
    void answer(const std::vector<const char*>& presses) const {
        ::alarm(20);
        QTimer::singleShot(0, [presses] {
            QWidget* dialog = QApplication::activeModalWidget();
            std::cerr << qPrintable(seen(*dialog));
            for (const char* name : presses)
                dialog->findChild<QAbstractButton*>(name)->click();
        });
        fncReadSetting();
        std::cerr << ", language " << gLanguage << '\n';
        std::_Exit(QFile::exists(file("Setting.INI")) ? 1 : 0);
    }
};

TEST_F(LanguageDialogDeathTest, BeginsWithTheLanguageOfTheSystemAndGivesTheChosenOne) {
    const char* const japanese = "Dravolt 言語選択 \\[\\*日本語\\*\\] 英語 OK Cancel, language ";
    const char* const english = "Dravolt Select Language Japanese \\[\\*English\\*\\] OK Cancel, language ";
    const std::tuple<const char*, std::vector<const char*>, const char*, const char*> cases[] = {
        // language of the system, what is pressed, what is seen, the language then
        {"ja_JP.UTF-8", {"cmdOK"}, japanese, "0"},
        {"ja_JP.UTF-8", {"optLanguage(1)", "cmdOK"}, japanese, "1"},
        {"ja_JP.UTF-8", {"optLanguage(1)", "cmdCancel"}, japanese, "0"},
        {"en_GB.UTF-8", {"optLanguage(0)", "cmdOK"}, english, "0"},
        {"de_DE.UTF-8", {"optLanguage(0)", "cmdCancel"}, english, "1"},
    };
    for (const auto& [locale, presses, seen, language] : cases) {
        qputenv("LC_ALL", locale);
        EXPECT_EXIT(answer(presses), testing::ExitedWithCode(0), std::string(seen) + language) << locale;
    }
}
