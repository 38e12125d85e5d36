#include "system/standard_error.h"

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

/// A writable pipe accepts at least this many bytes.
static constexpr qsizetype kMaxLine = 512;

/// `line` without what a terminal would obey: it may quote bytes of a unit, or the target of a link.
static QString harmless(QString line) {
    for (QChar& character : line)
        if (character.category() == QChar::Other_Control || character.category() == QChar::Other_Format)
            character = QLatin1Char('?');
    return line;
}

void complain(const QString& line) {
    const QByteArray bytes = "dravolt: " + harmless(line).toLocal8Bit().left(kMaxLine - 16) + '\n';
    pollfd state{STDERR_FILENO, POLLOUT, 0};
    if (::poll(&state, 1, 0) > 0 && (state.revents & POLLOUT) != 0)
        (void)!::write(STDERR_FILENO, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

/// A closed standard stream would pass its descriptor number to the next file opened, which may be the port.
static void openClosedStreams() {
    int descriptor = 0;
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = ::open("/dev/null", O_RDWR);
    ::close(descriptor);
}

/// Libraries write without asking for room. The flag must not reach those who share the stream, so it is opened anew;
/// where that is refused, as for a socket, it stays as it is.
static void writeWithoutWaiting() {
    const int own = ::open("/dev/fd/2", O_WRONLY | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (own < 0)
        return;
    ::dup2(own, STDERR_FILENO);
    ::close(own);
}

void guardStandardError() {
    openClosedStreams();
    writeWithoutWaiting();
    (void)std::signal(SIGPIPE, SIG_IGN);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) { complain(message); });
}
