/// Option buttons and check boxes on dark desktops.
#pragma once

/// Gives option buttons and check boxes an outline that stands out where windows are dark.
///
/// Call it once, before the first window.
void useVisibleIndicators();
