/// An operator who answers every message box at once and remembers what it said.
#pragma once

#include <QObject>
#include <QStringList>

#include <deque>
#include <vector>

/// One message box as the operator saw it.
struct Box {
    QString title;
    QString text;
    int icon = 0;  ///< a QMessageBox::Icon
    QStringList buttons;
};

/// Answers boxes for as long as it lives.
class BoxOperator : public QObject {
public:
    BoxOperator();

    /// Presses the button `number` (0 the first) of the next box that has not got its answer yet; later boxes get OK.
    void answerNext(int number) { answers_.push_back(number); }

    const std::vector<Box>& boxes() const { return boxes_; }

    /// Texts of the boxes since the last call, in order, with " / " for a line break.
    QStringList said();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::vector<Box> boxes_;
    std::size_t told_ = 0;
    std::deque<int> answers_;
};
