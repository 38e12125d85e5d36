/// Placement of windows without an owner.
#pragma once

class QWidget;

/// Moves `window`, which need not be shown yet, to the middle of its screen.
void centreOnScreen(QWidget& window);
