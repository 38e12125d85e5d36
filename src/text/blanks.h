/// Blanks around a text.
#pragma once

#include <QString>

/// `text` without the blanks (U+0020 alone) at its ends.
inline QString trimBlanks(const QString& text) {
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text[first] == QLatin1Char(' '))
        ++first;
    while (last > first && text[last - 1] == QLatin1Char(' '))
        --last;
    return text.mid(first, last - first);
}
