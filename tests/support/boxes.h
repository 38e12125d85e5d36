/// An operator who answers every message box in its window.
#pragma once

#include "support/user.h"
#include "widgets/box_window.h"

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QTimer>

#include <functional>

class BoxOperator : public QObject, public User {
public:
    BoxOperator() {
        setMessageBoxes([this](const MessageBox& box) {
            boxes_.push_back(box);
            return showBoxWindow(box);
        });
        qApp->installEventFilter(this);
    }

    static constexpr auto kEscape = kBoxFailed;

    /// Called with each window before it is answered.
    std::function<void(const QMessageBox&)> look = [](const QMessageBox&) {};

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* box = event->type() == QEvent::Show ? qobject_cast<QMessageBox*>(watched) : nullptr;
        if (box == nullptr)
            return false;
        look(*box);
        QTimer::singleShot(0, box, [box, answer = nextAnswer()] {
            QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
            if (answer == kEscape)
                QApplication::sendEvent(box, &escape);
            else
                box->buttons().at(answer - kOk)->click();
        });
        return false;
    }
};
