#include "widgets/colours.h"

#include <QApplication>
#include <QPalette>

QColor readableGrey(const QColor& text, const QColor& ground) {
    constexpr int kShareOfText = 55;
    const auto mixed = [](int a, int b) { return (a * kShareOfText + b * (100 - kShareOfText)) / 100; };
    return {mixed(text.red(), ground.red()), mixed(text.green(), ground.green()), mixed(text.blue(), ground.blue())};
}

void repairDarkPalette() {
    QPalette palette = QApplication::palette();
    const QColor text = palette.color(QPalette::WindowText);
    if (palette.color(QPalette::Window).lightness() > text.lightness())
        return;
    palette.setColor(QPalette::Disabled, QPalette::ButtonText,
                     readableGrey(palette.color(QPalette::ButtonText), palette.color(QPalette::Button)));
    QApplication::setPalette(palette, "QPushButton");
    // The style derives the outline from this colour.
    palette.setColor(QPalette::Window, text);
    for (const char* control : {"QRadioButton", "QCheckBox"})
        QApplication::setPalette(palette, control);
}
