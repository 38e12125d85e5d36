#include "system/single_instance.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>

bool isOnlyInstance() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    const QByteArray path = QFile::encodeName(QDir(folder).filePath(QStringLiteral("dravolt.lock")));
    // Left open on purpose: the lock lives as long as the descriptor does.
    const int lock = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (lock < 0) {
        std::fprintf(stderr, "dravolt: %s: %s; a second copy cannot be noticed\n", path.constData(),
                     std::strerror(errno));
        return true;
    }
    return ::flock(lock, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}
