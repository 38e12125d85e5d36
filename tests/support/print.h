/// Makes GoogleTest print Qt's strings.
#pragma once

#include <QByteArray>
#include <QStringList>

#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) { *out << '"' << text.toStdString() << '"'; }

inline void PrintTo(const QByteArray& bytes, std::ostream* out) {
    constexpr qsizetype kMost = 64;
    *out << bytes.left(kMost).toHex(' ').toStdString() << (bytes.size() > kMost ? " ..." : "");
}

inline void PrintTo(const QStringList& texts, std::ostream* out) {
    *out << '"' << texts.join(QStringLiteral("\", \"")).toStdString() << '"';
}
