/// The program around the code under test: its folder, and message boxes that need no operator.
#pragma once

#include <QByteArray>
#include <QString>

/// Number of message boxes that have been asked for. Each counts and is answered with OK; none is shown.
extern int gBoxes;

/// Puts a file with `content` into the program's folder, which is the process's own.
/// @return its path
QString writeProgramFile(const QString& name, const QByteArray& content);
