#include "system/program_end.h"

#include <utility>

static std::function<void()>& programEnd() {
    static std::function<void()> end;
    return end;
}

void endProgram() {
    if (programEnd())
        programEnd()();
    else
        endProcess();
}

void setProgramEnd(std::function<void()> end) { programEnd() = std::move(end); }
