#include "upgrade/fitted_label.h"

#include <QFontMetricsF>
#include <QPainter>

/// `font`, made smaller until `text` is no wider than `width`.
static QFont fitted(QFont font, const QString& text, qreal width) {
    constexpr qreal kSmallestPoints = 6;
    constexpr qreal kStep = 0.25;
    while (font.pointSizeF() > kSmallestPoints && QFontMetricsF(font).horizontalAdvance(text) > width)
        font.setPointSizeF(font.pointSizeF() - kStep);
    return font;
}

void FittedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(fitted(font(), text(), width()));
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, foregroundRole()));
    const QString shown = painter.fontMetrics().elidedText(text(), Qt::ElideRight, width());
    setToolTip(shown == text() ? QString() : text());
    painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine, shown);
}
