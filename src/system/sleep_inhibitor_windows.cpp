#include "system/sleep_inhibitor.h"

#include <windows.h>

static int held = 0;

// Windows counts no requests, and forgets that of a thread with the thread: there is only the one of the windows.
SleepInhibitor::SleepInhibitor() {
    ++held;
    // A screen that goes dark lets some computers sleep.
    ::SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED);
}

SleepInhibitor::~SleepInhibitor() {
    if (--held == 0)
        ::SetThreadExecutionState(ES_CONTINUOUS);
}

bool SleepInhibitor::isHeld() { return held > 0; }
