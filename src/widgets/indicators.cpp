#include "widgets/indicators.h"

#include <QApplication>
#include <QPalette>

static QColor halfWay(const QColor& a, const QColor& b) {
    return {(a.red() + b.red()) / 2, (a.green() + b.green()) / 2, (a.blue() + b.blue()) / 2};
}

void useVisibleIndicators() {
    QPalette palette = QApplication::palette();
    const QColor text = palette.color(QPalette::WindowText);
    if (palette.color(QPalette::Window).lightness() > text.lightness())
        return;
    // The text of a disabled button is nearly as dark as the button.
    palette.setColor(QPalette::Disabled, QPalette::ButtonText,
                     halfWay(palette.color(QPalette::ButtonText), palette.color(QPalette::Button)));
    QApplication::setPalette(palette, "QPushButton");
    // The style takes a darker shade of the window for the outline, which nobody sees on a dark window.
    palette.setColor(QPalette::Window, text);
    for (const char* control : {"QRadioButton", "QCheckBox"})
        QApplication::setPalette(palette, control);
}
