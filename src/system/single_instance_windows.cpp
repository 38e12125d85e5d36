#include "system/single_instance.h"

#include "system/standard_error.h"

#include <windows.h>

bool isOnlyInstance() {
    // Left open on purpose: the mutex lives as long as the process.
    static const HANDLE mutex = ::CreateMutexW(nullptr, FALSE, L"Local\\Dravolt");
    static const DWORD error = ::GetLastError();
    if (mutex == nullptr)
        complain(qt_error_string(static_cast<int>(error)) + QStringLiteral("; a second copy cannot be noticed"));
    return error != ERROR_ALREADY_EXISTS;
}
