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
    const auto unnoticed = [](const QString& reason) {
        complain(reason + QStringLiteral("; a second copy cannot be noticed"));
        return true;
    };
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    // A lock in the current folder would not be the one that other copies take.
    if (!QDir::isAbsolutePath(folder))
        return unnoticed(QStringLiteral("there is no runtime folder"));
    const QString path = QDir(folder).filePath(QStringLiteral("dravolt.lock"));
    // Left open on purpose: the lock lives as long as the descriptor does.
    lock = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (lock >= 0 && ::flock(lock, LOCK_EX | LOCK_NB) == 0)
        return true;
    if (errno != EWOULDBLOCK)
        return unnoticed(path + QStringLiteral(": ") + qt_error_string(errno));
    ::close(std::exchange(lock, -1));
    return false;
}
