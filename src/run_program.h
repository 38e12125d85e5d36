/// From main() to the event loop.
#pragma once

/// The users of the program: operators, or service engineers, who also see verification, save and Cancel.
enum class Edition { standard, service };

/// Sets everything up, runs the start-up sequence and the event loop.
/// @return only if the event loop fails; normally endProgram() ends the program
int runProgram(int argc, char* argv[], Edition edition);
