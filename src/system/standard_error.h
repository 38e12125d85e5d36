/// What is said beside the windows, to whoever started the program from a terminal.
#pragma once

#include <QString>

/// Writes one line with the program's name to standard error.
void complain(const QString& line);
