/// Makes GoogleTest print Qt's strings.
#pragma once

#include <QStringList>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }
