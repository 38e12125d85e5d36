/// The only way the program ends.
#pragma once

#include <functional>

/// Ends the program at once, with exit status 0, from wherever it is called, inside nested event loops included.
///
/// No destructor of a window in use runs and nothing more is sent. Does not return, except where a test has put a
/// returning function in its place.
void endProgram();

/// Ends the process at once, with exit status 0. No destructor runs, neither here nor in a library.
[[noreturn]] void endProcess();

/// Puts `end` in the place of what endProgram() does; an empty function restores the plain end of the process.
///
/// main() adds what has to happen to an open port, tests put a function that throws.
void setProgramEnd(std::function<void()> end);
