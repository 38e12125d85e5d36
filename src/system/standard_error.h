/// Diagnostics on standard error, for whoever started the program from a terminal; on Windows, for a debugger.
#pragma once

#include <QString>

/// Writes one line with the program's name to standard error, cut to what a pipe takes at once.
///
/// Never waits: a line that nobody can take now is dropped.
void complain(const QString& line);

/// Keeps standard error from ending or delaying the program: a pipe whose reader has gone ends nothing, and Qt's own
/// messages take the way of complain(). main() calls it, first of all.
void guardStandardError();
