/// Keeps the computer awake from its construction to its destruction. On Linux it holds logind inhibitors against
/// shutdown, sleep, idle and the lid switch; on Windows it asks for system and display.
///
/// Waits for nothing: on Linux a thread of its own asks, as a bus may not answer. If the system refuses, it does
/// without and shows nothing.
#pragma once

#include <memory>

class SleepInhibitor {
public:
    SleepInhibitor();
    ~SleepInhibitor();
    SleepInhibitor(const SleepInhibitor&) = delete;
    SleepInhibitor& operator=(const SleepInhibitor&) = delete;

    /// Whether there is such an object: whoever wants to end the session has to wait then.
    static bool isHeld();

    /// What has been taken, shared with the thread that asks; unused on Windows.
    struct Locks;

private:
    std::shared_ptr<Locks> locks_;
};
