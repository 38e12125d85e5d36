#include "support/focus_route.h"

#include <QAccessible>
#include <QFrame>
#include <QMetaEnum>
#include <QWidget>

/// The text of the label that stands for `control`, or its own; the title of a group stands for none of its buttons.
static QString name(QWidget* control) {
    QAccessibleInterface* found = QAccessible::queryAccessibleInterface(control);
    for (const auto& [label, relation] : found->relations(QAccessible::Label))
        if (label->role() == QAccessible::StaticText)
            return label->text(QAccessible::Name);
    return found->text(QAccessible::Name);
}

static bool isDecoration(const QWidget& widget) { return widget.metaObject() == &QFrame::staticMetaObject; }

QStringList focusRoute(QWidget& window) {
    QStringList route;
    for (QWidget* control = window.nextInFocusChain(); control != &window; control = control->nextInFocusChain()) {
        if (!control->isVisible() || (control->focusPolicy() & Qt::TabFocus) == 0)
            continue;
        const QAccessible::Role role = QAccessible::queryAccessibleInterface(control)->role();
        route += QLatin1String(QMetaEnum::fromType<QAccessible::Role>().valueToKey(role)) + ": " + name(control);
    }
    return route;
}

QStringList nameless(const QWidget& window) {
    QStringList found;
    for (QWidget* control : window.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        if (control->isVisible() && !isDecoration(*control) && name(control).isEmpty())
            found += control->objectName();
    return found;
}
