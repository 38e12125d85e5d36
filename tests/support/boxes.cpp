#include "support/boxes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTimer>

BoxOperator::BoxOperator() { qApp->installEventFilter(this); }

QStringList BoxOperator::said() {
    QStringList texts;
    for (; told_ < boxes_.size(); ++told_)
        texts += boxes_[told_].text;
    return texts.replaceInStrings(QStringLiteral("\n"), QStringLiteral(" / "));
}

bool BoxOperator::eventFilter(QObject* watched, QEvent* event) {
    auto* box = event->type() == QEvent::Show ? qobject_cast<QMessageBox*>(watched) : nullptr;
    if (box == nullptr)
        return false;
    boxes_.push_back({box->windowTitle(), box->text(), box->icon(), {}});
    const QList<QAbstractButton*> buttons = box->buttons();
    for (const QAbstractButton* button : buttons)
        boxes_.back().buttons += button->text();
    QAbstractButton* pressed = buttons.at(answers_.empty() ? 0 : answers_.front());
    if (!answers_.empty())
        answers_.pop_front();
    QTimer::singleShot(0, box, [pressed] { pressed->click(); });
    return false;
}
