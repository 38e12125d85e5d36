#include "support/boxes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTimer>

#include <utility>

BoxOperator::BoxOperator() { qApp->installEventFilter(this); }

BoxOperator::~BoxOperator() { qApp->removeEventFilter(this); }

QStringList BoxOperator::texts() const {
    QStringList texts;
    for (const Box& box : boxes_)
        texts += QString(box.text).replace(QLatin1Char('\n'), QStringLiteral(" / "));
    return texts;
}

QStringList BoxOperator::said() { return texts().mid(std::exchange(told_, static_cast<qsizetype>(boxes_.size()))); }

bool BoxOperator::eventFilter(QObject* watched, QEvent* event) {
    auto* box = event->type() == QEvent::Show ? qobject_cast<QMessageBox*>(watched) : nullptr;
    if (box == nullptr)
        return false;
    Box seen{box->windowTitle(), box->text(), box->icon(), {}};
    const QList<QAbstractButton*> buttons = box->buttons();
    for (const QAbstractButton* button : buttons)
        seen.buttons += button->text();
    boxes_.push_back(seen);
    int answer = 0;
    if (!answers_.empty()) {
        answer = answers_.front();
        answers_.pop_front();
    }
    QAbstractButton* pressed = buttons.at(answer);
    QTimer::singleShot(0, box, [pressed] { pressed->click(); });
    return false;
}
