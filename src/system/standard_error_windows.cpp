#include "system/standard_error.h"

#include <windows.h>

/// Programs with windows have no standard error: diagnostics go to whoever debugs.
void complain(const QString& line) {
    ::OutputDebugStringW((QStringLiteral("dravolt: ") + line + QLatin1Char('\n')).toStdWString().c_str());
}

void guardStandardError() {
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) { complain(message); });
}
