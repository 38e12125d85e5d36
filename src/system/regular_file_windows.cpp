#include "system/regular_file.h"

#include <QFileInfo>

bool RegularFile::open(OpenMode mode) {
    if (!exists() || QFileInfo(*this).isFile())
        return QFile::open(mode);
    setErrorString(QStringLiteral("not a regular file"));
    return false;
}
