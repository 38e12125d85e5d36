#include "system/sleep_inhibitor.h"

#include <QDBusConnection>
#include <QDBusMessage>

SleepInhibitor::SleepInhibitor() {
    QDBusConnection bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return;
    QDBusMessage inhibit = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    inhibit << QStringLiteral("sleep:idle") << QStringLiteral("Dravolt")
            << QStringLiteral("A firmware transfer is running") << QStringLiteral("block");
    inhibition_ = bus.asyncCall(inhibit);
}
