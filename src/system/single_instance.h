/// Whether another copy of the program is running for this user.
#pragma once

/// Takes the user's lock, on Windows a mutex of the session, and keeps it for the life of the process; the system
/// releases it however the process ends.
///
/// Asked again, it answers for the same process.
/// @return false when another copy holds the lock. Where there can be no lock, complain() says so and
///         the program counts as the only copy.
bool isOnlyInstance();
