#include "support/boxes.h"
#include "support/program.h"
#include "widgets/form_texts.h"

class BoxWindow : public ProgramTest {
protected:
    BoxOperator user;
};

TEST_F(BoxWindow, ShowsWhatTheOperatorCanAnswer) {
    QWidget window;
    window.show();
    constexpr int kEscape = BoxOperator::kEscape;
    const struct {
        int style;
        QMessageBox::Icon icon;
        QStringList english;
        QStringList japanese;
        std::map<int, int> answers;  ///< what is pressed, and what it means
    } cases[] = {
        {kOkOnly, QMessageBox::NoIcon, {"OK"}, {"OK"}, {{0, kOk}, {kEscape, kOk}}},
        {kCritical, QMessageBox::Critical, {"OK"}, {"OK"}, {{0, kOk}}},
        {kExclamation, QMessageBox::Warning, {"OK"}, {"OK"}, {{0, kOk}}},
        {kInformation, QMessageBox::Information, {"OK"}, {"OK"}, {{0, kOk}}},
        {kQuestion + kOkCancel,
         QMessageBox::Question,
         {"OK", "Cancel"},
         {"OK", "キャンセル"},
         {{0, kOk}, {1, kCancel}, {kEscape, kCancel}}},
    };
    for (const auto& c : cases)
        for (gLanguage = 0; gLanguage <= 1; ++gLanguage)
            for (const auto& [pressed, answer] : c.answers) {
                gLangOffset = 10'000 * gLanguage;
                user.answerNext(pressed);
                EXPECT_EQ(showMessageBox("<b>a</b>\r\nb", c.style), answer) << c.style << ", pressed " << pressed;
                ASSERT_EQ(user.said(), QStringList("<b>a</b> / b"));
                const Box& box = user.boxes().back();
                EXPECT_EQ(box.title, "Dravolt");
                EXPECT_EQ(box.icon, c.icon) << c.style;
                EXPECT_EQ(box.buttons, gLanguage == 0 ? c.japanese : c.english) << c.style;
                EXPECT_EQ(box.owner, &window) << "the box cannot go behind the window";
            }
}

TEST_F(BoxWindow, QtsOwnTextsSpeakTheLanguageOfTheForms) {
    for (const auto& [language, save] : {std::pair{0, "保存"}, {1, "Save"}, {0, "保存"}}) {
        gLanguage = language;
        subApplyLanguage([] {});
        EXPECT_EQ(QCoreApplication::translate("QPlatformTheme", "Save"), save);
    }
}
