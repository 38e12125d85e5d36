#include "upgrade/fitted_label.h"

#include "widgets/colours.h"

#include <QFontMetricsF>
#include <QHelpEvent>
#include <QPainter>
#include <QTextDocument>
#include <QToolTip>

FittedLabel::FittedLabel(QWidget* parent) : QLabel(parent) {
    // Otherwise the accessible text of a name with "<" or "&" would differ from the painted one.
    setTextFormat(Qt::PlainText);
}

/// `font`, reduced until `text` is no wider than `width`.
static QFont fitted(QFont font, const QString& text, qreal width) {
    constexpr qreal kSmallestPoints = 6;
    constexpr qreal kStep = 0.25;
    while (font.pointSizeF() > kSmallestPoints && QFontMetricsF(font).horizontalAdvance(text) > width)
        font.setPointSizeF(font.pointSizeF() - kStep);
    return font;
}

QColor FittedLabel::textColour() const {
    const QColor text = palette().color(QPalette::Active, QPalette::WindowText);
    if (!grey_ && isEnabled())
        return text;
    return readableGrey(text, palette().color(QPalette::Active, QPalette::Window));
}

void FittedLabel::setGrey(bool grey) {
    grey_ = grey;
    update();
}

QString FittedLabel::shownText(const QFont& shownFont) const {
    return QFontMetrics(shownFont).elidedText(text(), Qt::ElideRight, width());
}

bool FittedLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QLabel::event(event);
    const bool isWhole = shownText(fitted(font(), text(), width())) == text();
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                       isWhole ? QString() : Qt::convertFromPlainText(text()), this);
    return true;
}

void FittedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(fitted(font(), text(), width()));
    painter.setPen(textColour());
    painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine, shownText(painter.font()));
}
