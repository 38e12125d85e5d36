#include "system/program_end.h"

#include <cstdlib>
#include <windows.h>

void endProcess() {
    // ExitProcess() would take the libraries down below the windows.
    ::TerminateProcess(::GetCurrentProcess(), EXIT_SUCCESS);
    std::abort();
}
