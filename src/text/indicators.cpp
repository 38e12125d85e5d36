#include "text/indicators.h"

#include <QApplication>
#include <QPalette>

void useVisibleIndicators() {
    QPalette palette = QApplication::palette();
    const QColor text = palette.color(QPalette::WindowText);
    if (palette.color(QPalette::Window).lightness() > text.lightness())
        return;
    // The style takes a darker shade of the window for the outline, which nobody sees on a dark window.
    palette.setColor(QPalette::Window, text);
    for (const char* control : {"QRadioButton", "QCheckBox"})
        QApplication::setPalette(palette, control);
}
