/// Shows one line of plain text in the largest font, up to its own, in which the text fits the label's width.
///
/// Where even the smallest readable font is too wide, the text ends in "…" and is whole in the tool tip.
#pragma once

#include <QLabel>

class FittedLabel : public QLabel {
public:
    explicit FittedLabel(QWidget* parent);

    /// Writes the text in grey, as it also is while the label is disabled.
    void setGrey(bool grey);

    /// Colour of the text: that of the window's texts, or a grey that can be read on a light and on a dark desktop.
    QColor textColour() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString shownText(const QFont& shownFont) const;

    bool grey_ = false;
};
