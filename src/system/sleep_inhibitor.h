/// Keeps the machine awake while a transfer runs.
#pragma once

#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>

/// Holds a logind inhibitor against sleep and idle from its construction to its destruction.
///
/// Waits for nothing; where there is no logind, it does nothing and shows nothing.
class SleepInhibitor {
public:
    SleepInhibitor();

private:
    /// Owns the descriptor that logind answers with; the inhibition ends when it is closed.
    QDBusPendingReply<QDBusUnixFileDescriptor> inhibition_;
};
