/// Buttons, option buttons and check boxes on dark desktops.
#pragma once

/// Where windows are dark, gives option buttons and check boxes an outline that stands out, and disabled buttons a text
/// that can be read.
///
/// Call it once, before the first window.
void useVisibleIndicators();
