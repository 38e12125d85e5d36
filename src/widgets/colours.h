/// Colours that can be read on light and on dark desktops.
#pragma once

#include <QColor>

/// A grey between a window's `text` and `ground` colours; readable, unlike that of many styles.
QColor readableGrey(const QColor& text, const QColor& ground);

/// On dark desktops, makes the text of disabled buttons and the outline of option buttons and check boxes visible: the
/// style uses shades of the dark window for them.
///
/// Call once, before the first window.
void repairDarkPalette();
