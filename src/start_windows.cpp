/// Before main(): whatever Windows or Qt load later comes from the folders of the program and of the system, never from
/// the current one or the search path.
#include <windows.h>

[[maybe_unused]] static const BOOL kIsConfined =
    ::SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_APPLICATION_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
