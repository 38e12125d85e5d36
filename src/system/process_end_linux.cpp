#include "system/program_end.h"

#include <cstdlib>

void endProcess() { std::_Exit(EXIT_SUCCESS); }
