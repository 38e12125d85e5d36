#include "widgets/centring.h"

#include <QScreen>
#include <QWidget>

void centreOnScreen(QWidget& window) {
    window.adjustSize();
    const QRect area = window.screen()->geometry();
    window.move(area.x() + (area.width() - window.width()) / 2, area.y() + (area.height() - window.height()) / 2);
}
