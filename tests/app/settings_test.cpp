#include "app/settings.h"

#include "app/language_dialog.h"
#include "support/program.h"
#include "support/user.h"

#include <QAbstractButton>
#include <QApplication>
#include <QGroupBox>
#include <QTimer>

class Settings : public ProgramTest {
protected:
    /// Presses these buttons in the next language dialog, and records what it shows.
    void answerDialog(const std::vector<const char*>& presses) {
        QTimer::singleShot(0, [this, presses] {
            QWidget* dialog = QApplication::activeModalWidget();
            ASSERT_NE(dialog, nullptr);
            seen = dialog->windowTitle() + ' ' + dialog->findChild<QGroupBox*>()->title();
            for (const auto* button : dialog->findChildren<QAbstractButton*>())
                seen +=
                    (button->isChecked() ? " *" : " ") + button->text() + (button == dialog->focusWidget() ? "_" : "");
            for (const char* name : presses)
                dialog->findChild<QAbstractButton*>(name)->click();
            EXPECT_FALSE(dialog->isVisible());
            dialog->close();
        });
    }

    User user;
    QString seen;  ///< texts of the language dialog; "*" marks the selected one, "_" the focus
};

static constexpr auto kEnglishDialog = "Dravolt Select Language Japanese *English_ OK Cancel";
static constexpr auto kJapaneseDialog = "Dravolt 言語選択 *日本語_ 英語 OK Cancel";

TEST_F(Settings, LanguageAndPortComeFromTheFile) {
    // Language, its meaning, COM, its meaning
    const std::tuple<const char*, int, const char*, int> cases[] = {
        {"JAPANESE ' remark", 0, "3", 3}, {"japanese", 1, "3x", 1}, {"E", 1, "-1", -1}};
    for (const auto& [language, selector, com, port] : cases) {
        writeFile("Setting.INI", QByteArray("[operation]\nLANGUAGE=") + language + "\n[ifu]\ncom=" + com + "\n");
        EXPECT_TRUE(fncReadSetting()) << com;
        EXPECT_EQ(gLanguage, selector) << language;
        EXPECT_EQ(gComPort, port) << com;
    }
    writeFile("Setting.INI", "[OPERATION]\nLanguage=JAPANESE\n[IFU]\nCOM=4294967296\n");
    EXPECT_FALSE(fncReadSetting());
    EXPECT_EQ(user.said().filter(": 4294967296 ").size(), 1);
}

TEST_F(Settings, AMissingLanguageIsAskedForInTheSystemLanguage) {
    answerDialog({"optLanguage(0)", "cmdOK"});
    EXPECT_TRUE(fncReadSetting());
    EXPECT_EQ(seen, kEnglishDialog);
    EXPECT_EQ(gLanguage, 0);
    EXPECT_FALSE(QFile::exists(file("Setting.INI"))) << "the choice holds for this run only";
}

TEST_F(Settings, OnlyOkChangesTheLanguage) {
    const std::tuple<int, std::vector<const char*>, const char*, int> cases[] = {
        // language before, buttons pressed, texts shown, language after
        {0, {"optLanguage(1)", "cmdOK"}, kJapaneseDialog, 1},
        {1, {"optLanguage(0)", "cmdCancel"}, kEnglishDialog, 1}};
    for (const auto& [before, pressed, dialog, after] : cases) {
        gLanguage = before;
        answerDialog(pressed);
        frmLanguage().exec();
        EXPECT_EQ(seen, dialog);
        EXPECT_EQ(gLanguage, after) << pressed.front();
    }
}
