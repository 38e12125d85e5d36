/// The folder that holds the program file: beside it lie the INI files, the port links and the communication log.
#pragma once

#include <QString>

/// Path of the file `name` in the program's folder.
QString programFile(const QString& name);

/// The program's folder, without a slash at its end.
QString programFolder();

/// Sets the program's folder; main() calls it once, tests call it with a folder of their own.
void setProgramFolder(const QString& folder);
