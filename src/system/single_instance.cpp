#include "system/single_instance.h"

#include "system/standard_error.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <utility>

bool isOnlyInstance() {
    static int lock = -1;
    if (lock >= 0)
        return true;
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty()) {
        complain(QStringLiteral("there is no runtime folder; a second copy cannot be noticed"));
        return true;
    }
    const QByteArray path = QFile::encodeName(QDir(folder).filePath(QStringLiteral("dravolt.lock")));
    // Left open on purpose: the lock lives as long as the descriptor does.
    lock = ::open(path.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (lock < 0) {
        complain(QStringLiteral("%1: %2; a second copy cannot be noticed")
                     .arg(QFile::decodeName(path), qt_error_string(errno)));
        return true;
    }
    if (::flock(lock, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK)
        return true;
    ::close(std::exchange(lock, -1));
    return false;
}
