#include "support/boxes.h"
#include "support/program.h"
#include "widgets/form_texts.h"

class BoxWindow : public ProgramTest {
protected:
    BoxOperator user;
};

TEST_F(BoxWindow, ShowsPlainTextWithTheIconOfItsStyleBeforeTheWindowInUse) {
    QWidget window;
    window.show();
    for (const auto& [style, icon] : {std::pair{kOkOnly, QMessageBox::NoIcon},
                                      {kCritical, QMessageBox::Critical},
                                      {kQuestion, QMessageBox::Question},
                                      {kExclamation, QMessageBox::Warning},
                                      {kInformation, QMessageBox::Information}}) {
        showMessageBox("<b>a</b>\r\nb", style);
        ASSERT_EQ(user.said(), QStringList("<b>a</b> / b"));
        EXPECT_EQ(user.boxes().back().icon, icon);
        EXPECT_EQ(user.boxes().back().title, "Dravolt");
        EXPECT_EQ(user.boxes().back().owner, &window);
    }
}

TEST_F(BoxWindow, TakesTheAnswerFromTheButtonOrEscape) {
    constexpr int kEscape = BoxOperator::kEscape;
    const std::tuple<int, int, QStringList, int, int> cases[] = {
        // style, language offset, buttons, what is pressed, what it means
        {kInformation, 0, {"OK"}, 0, kOk},
        {kInformation, 10'000, {"OK"}, kEscape, kOk},
        {kQuestion + kOkCancel, 0, {"OK", "キャンセル"}, 0, kOk},
        {kQuestion + kOkCancel, 10'000, {"OK", "Cancel"}, 1, kCancel},
        {kQuestion + kOkCancel, 10'000, {"OK", "Cancel"}, kEscape, kCancel},
    };
    for (const auto& [style, offset, buttons, pressed, answer] : cases) {
        gLangOffset = offset;
        user.answerNext(pressed);
        EXPECT_EQ(showMessageBox("text", style), answer) << pressed;
        ASSERT_FALSE(user.said().isEmpty());
        EXPECT_EQ(user.boxes().back().buttons, buttons);
    }
}

TEST_F(BoxWindow, QtsOwnTextsSpeakTheLanguageOfTheForms) {
    for (const auto& [language, save] : {std::pair{0, "保存"}, {1, "Save"}, {0, "保存"}}) {
        gLanguage = language;
        subApplyLanguage([] {});
        EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Save"), save);
    }
}
