#include "system/cp932.h"

#include <QStringDecoder>

QString fromCp932(const QByteArray& bytes) { return QStringDecoder("windows-31j").decode(bytes); }
