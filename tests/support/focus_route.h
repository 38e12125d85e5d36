/// What assistive technology and the keyboard find in a window.
#pragma once

#include <QStringList>

class QWidget;

/// "Role: name" of each control that Tab reaches in the visible `window`, in its order, from the first one made on.
QStringList focusRoute(QWidget& window);

/// Object names of the visible controls and labels of `window` that say nothing.
QStringList nameless(const QWidget& window);
