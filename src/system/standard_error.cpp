#include "system/standard_error.h"

#include <csignal>
#include <poll.h>
#include <unistd.h>

/// A pipe that takes bytes at all takes so many at once.
static constexpr qsizetype kMaxLine = 512;

void complain(const QString& line) {
    const QByteArray bytes = "dravolt: " + line.toLocal8Bit().left(kMaxLine - 16) + '\n';
    pollfd state{STDERR_FILENO, POLLOUT, 0};
    if (::poll(&state, 1, 0) > 0 && (state.revents & POLLOUT) != 0)
        (void)!::write(STDERR_FILENO, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

void guardStandardError() {
    std::signal(SIGPIPE, SIG_IGN);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) { complain(message); });
}
