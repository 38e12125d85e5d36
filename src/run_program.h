/// The program, from main() to its event loop.
#pragma once

/// Whom the program is for: operators, or service engineers, who also see verification, save and Cancel.
enum class Edition { standard, service };

/// Wires the pieces together, runs the start-up sequence and the event loop.
/// @return only when the event loop fails; the program ends with endProgram()
int runProgram(int argc, char* argv[], Edition edition);
