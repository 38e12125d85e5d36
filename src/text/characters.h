/// Texts as units, images and tables carry them.
#pragma once

#include <QByteArray>
#include <QString>

/// The text of `bytes`, one character a byte: CP932, as the type tables are, as far as single bytes go. Half-width
/// katakana are themselves; the halves of a double-byte character stay two characters that no table has.
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
