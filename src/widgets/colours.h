/// Colours that can be read on light and on dark desktops.
#pragma once

#include <QColor>

/// A grey between a window's `text` and its `ground`, which can be read on it, unlike that of many styles.
QColor readableGrey(const QColor& text, const QColor& ground);

/// Where windows are dark, gives disabled buttons a text that can be read, and option buttons and check boxes an
/// outline that can be seen. The style takes shades of the dark window for them.
///
/// Call it once, before the first window.
void repairDarkPalette();
