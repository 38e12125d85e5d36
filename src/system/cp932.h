/// The text encoding of Japanese Windows.
#pragma once

#include <QByteArray>
#include <QString>

/// The text of `bytes` in code page 932; what is no character of it becomes a replacement character.
QString fromCp932(const QByteArray& bytes);
