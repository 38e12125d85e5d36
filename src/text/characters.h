/// Texts from units, images and tables.
#pragma once

#include <QByteArray>
#include <QString>

/// The text of `bytes`, one character per byte: the single-byte part of CP932, the encoding of the type tables.
/// Half-width katakana are converted; a double-byte character becomes two characters that no table contains.
inline QString singleByteText(const QByteArray& bytes) {
    constexpr ushort kFirstKatakana = 0xA1;
    constexpr ushort kLastKatakana = 0xDF;
    constexpr ushort kHalfWidthKatakana = 0xFF61;
    QString characters = QString::fromLatin1(bytes);
    for (QChar& character : characters)
        if (character >= QChar(kFirstKatakana) && character <= QChar(kLastKatakana))
            character = QChar(character.unicode() - kFirstKatakana + kHalfWidthKatakana);
    return characters;
}

/// `text` without the blanks (U+0020 only) at its ends.
inline QString trimBlanks(const QString& text) {
    qsizetype first = 0;
    qsizetype last = text.size();
    while (first < last && text[first] == QLatin1Char(' '))
        ++first;
    while (last > first && text[last - 1] == QLatin1Char(' '))
        --last;
    return text.mid(first, last - first);
}
