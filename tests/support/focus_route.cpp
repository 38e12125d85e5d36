#include "support/focus_route.h"

#include <QAccessible>
#include <QFrame>
#include <QMetaEnum>
#include <QWidget>

/// The text of the label that stands for `control`, or its own.
static QString name(QWidget* control) {
    QAccessibleInterface* found = QAccessible::queryAccessibleInterface(control);
    const auto labels = found->relations(QAccessible::Label);
    return (labels.isEmpty() ? found : labels.first().first)->text(QAccessible::Name);
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
