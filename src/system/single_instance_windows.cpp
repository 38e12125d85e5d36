#include "system/single_instance.h"

#include "system/standard_error.h"

#include <windows.h>

bool isOnlyInstance() {
    // Left open on purpose: the mutex lives as long as the process.
    static const HANDLE mutex = ::CreateMutexW(nullptr, FALSE, L"Local\\Dravolt");
    static const DWORD error = ::GetLastError();
    if (mutex == nullptr && error != ERROR_ACCESS_DENIED)
        complain(qt_error_string(static_cast<int>(error)) + QStringLiteral("; a second copy cannot be noticed"));
    // Refused is what a copy with more rights holds.
    return error != ERROR_ALREADY_EXISTS && error != ERROR_ACCESS_DENIED;
}
