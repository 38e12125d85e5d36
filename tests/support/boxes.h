/// An operator who answers every message box at once, in its window, and remembers what it said.
#pragma once

#include "widgets/box_window.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QTextDocumentFragment>
#include <QTimer>

#include <chrono>
#include <deque>
#include <vector>

/// One message box as the operator saw it.
struct Box {
    QString title;
    QString text;
    QMessageBox::Icon icon;
    QStringList buttons;
    QWidget* owner;
};

/// Answers boxes for as long as it lives.
class BoxOperator : public QObject {
public:
    BoxOperator() {
        setMessageBoxes(showBoxWindow);
        qApp->installEventFilter(this);
    }
    ~BoxOperator() override { setMessageBoxes({}); }

    /// In the place of a button: the key.
    static constexpr int kEscape = -1;

    /// Presses the button `number` (0 the first) of the next box that has not got its answer yet; later boxes get OK.
    void answerNext(int number) { answers_.push_back(number); }

    /// Takes that long to read a box before it is answered.
    std::chrono::milliseconds readingTime{0};

    const std::vector<Box>& boxes() const { return boxes_; }

    /// Texts of the boxes since the last call, in order, with " / " for a line break.
    QStringList said() {
        QStringList texts;
        for (; told_ < boxes_.size(); ++told_)
            texts += boxes_[told_].text;
        return texts.replaceInStrings("\n", " / ");
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* box = event->type() == QEvent::Show ? qobject_cast<QMessageBox*>(watched) : nullptr;
        if (box == nullptr)
            return false;
        boxes_.push_back({box->windowTitle(), shownText(*box), box->icon(), {}, box->parentWidget()});
        for (const QAbstractButton* button : box->buttons())
            boxes_.back().buttons += button->text();
        const int answer = answers_.empty() ? 0 : answers_.front();
        if (!answers_.empty())
            answers_.pop_front();
        QTimer::singleShot(readingTime, box, [box, answer] { give(*box, answer); });
        return false;
    }

private:
    static QString shownText(const QMessageBox& box) {
        const bool marksUp = box.textFormat() != Qt::PlainText && Qt::mightBeRichText(box.text());
        return marksUp ? QTextDocumentFragment::fromHtml(box.text()).toPlainText() : box.text();
    }

    static void give(QMessageBox& box, int answer) {
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        if (answer == kEscape)
            QApplication::sendEvent(&box, &escape);
        else
            box.buttons().at(answer)->click();
    }

    std::vector<Box> boxes_;
    std::size_t told_ = 0;
    std::deque<int> answers_;
};
