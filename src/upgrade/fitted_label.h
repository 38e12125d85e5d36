/// Shows one line of plain text in the largest font, up to its own, in which the text fits the label's width.
///
/// Where even the smallest readable font is too wide, the text is cut with "…", and the tool tip has all of it.
#pragma once

#include <QLabel>

class FittedLabel : public QLabel {
public:
    explicit FittedLabel(QWidget* parent);

    /// Shows the text in grey, as also while the label is disabled.
    void setGrey(bool grey);

    /// Colour of the text: the window's, or a grey that can be read on light and dark desktops.
    QColor textColour() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString shownText(const QFont& shownFont) const;

    bool grey_ = false;
};
