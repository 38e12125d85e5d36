#include "system/regular_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bool RegularFile::open(OpenMode mode) {
    const int access = (mode & Append) != 0 ? O_WRONLY | O_CREAT | O_APPEND : O_RDONLY;
    const QByteArray path = encodeName(fileName());
    const int descriptor = ::open(path.constData(), access | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
    if (descriptor < 0) {
        setErrorString(qt_error_string(errno));
        return false;
    }
    struct stat status {};
    if (::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode))
        return QFile::open(descriptor, mode, AutoCloseHandle);
    setErrorString(QStringLiteral("not a regular file"));
    ::close(descriptor);
    return false;
}
