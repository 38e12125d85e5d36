#include "support/boxes.h"
#include "support/program.h"
#include "widgets/form_texts.h"

class BoxWindow : public ProgramTest {
protected:
    BoxOperator user;
};

TEST_F(BoxWindow, ShowsPlainTextAndItsIconOverTheActiveWindow) {
    QWidget window;
    window.show();
    for (const auto& [style, icon] : {std::pair{kOkOnly, QMessageBox::NoIcon},
                                      {kCritical, QMessageBox::Critical},
                                      {kQuestion, QMessageBox::Question},
                                      {kExclamation, QMessageBox::Warning},
                                      {kInformation, QMessageBox::Information}}) {
        user.look = [&window, expected = icon](const QMessageBox& box) {
            EXPECT_EQ(box.text(), "<b>a</b>\nb");
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            EXPECT_EQ(box.icon(), expected);
            EXPECT_EQ(box.windowTitle(), "Dravolt");
            EXPECT_EQ(box.parentWidget(), &window);
        };
        showMessageBox("<b>a</b>\r\nb", style);
    }
    EXPECT_EQ(user.boxes().size(), 5U);
}

TEST_F(BoxWindow, ReturnsTheButtonPressedOrEscape) {
    constexpr auto kEscape = BoxOperator::kEscape;
    const std::tuple<int, int, MsgBoxResult, MsgBoxResult, QStringList> cases[] = {
        // style, language offset, key or button, answer, buttons
        {kInformation, 0, kOk, kOk, {"OK"}},
        {kInformation, 10'000, kEscape, kOk, {"OK"}},
        {kQuestion + kOkCancel, 0, kOk, kOk, {"OK", "キャンセル"}},
        {kQuestion + kOkCancel, 10'000, kCancel, kCancel, {"OK", "Cancel"}},
        {kQuestion + kOkCancel, 10'000, kEscape, kCancel, {"OK", "Cancel"}}};
    QStringList buttons;
    user.look = [&buttons](const QMessageBox& box) {
        buttons.clear();
        for (const QAbstractButton* button : box.buttons())
            buttons += button->text();
    };
    for (const auto& [style, offset, pressed, answer, captions] : cases) {
        gLangOffset = offset;
        user.answerNext(pressed);
        EXPECT_EQ(showMessageBox("text", style), answer) << pressed;
        EXPECT_EQ(buttons, captions);
    }
}

TEST_F(BoxWindow, QtsOwnTextsAreInTheLanguageOfTheForms) {
    for (const auto& [language, save] : {std::pair{0, "保存"}, {1, "Save"}, {0, "保存"}}) {
        gLanguage = language;
        subApplyLanguage([] {});
        EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Save"), save);
    }
}
