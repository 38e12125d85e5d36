#include "system/event_wait.h"
#include "system/program_end.h"
#include "system/single_instance.h"
#include "system/sleep_inhibitor.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace std::chrono_literals;

TEST(EventWait, EndsWithTheConditionOrToTheMillisecond) {
    QElapsedTimer clock;
    clock.start();
    bool done = false;
    QTimer::singleShot(20, [&done] { done = true; });
    EXPECT_TRUE(waitServingEvents(10s, [&done] { return done; }));
    EXPECT_LT(clock.restart(), 200);
    EXPECT_FALSE(waitServingEvents(300ms, [] { return false; }));
    EXPECT_GE(clock.elapsed(), 300);
    EXPECT_LT(clock.elapsed(), 315) << "a coarse timer would be off by up to 5 %";
}

TEST(ProgramEndDeathTest, EndsFromInsideANestedEventLoopWithStatusZero) {
    const auto endWithin = [] {
        QTimer::singleShot(0, endProgram);
        waitServingEvents(10s, [] { return waitServingEvents(10s, [] { return false; }); });
    };
    EXPECT_EXIT(endWithin(), testing::ExitedWithCode(0), "");
}

TEST(SingleInstance, IsRefusedWhileAnotherHoldsTheLock) {
    const QString path = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + "/dravolt.lock";
    const int other = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0) << "a copy of the program is running";
    EXPECT_FALSE(isOnlyInstance());
    ::close(other);
    EXPECT_TRUE(isOnlyInstance()) << "a killed copy does not block the next";
}

/// A logind that hands out one end of a pipe and keeps the other.
class FakeLogind : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override {
        EXPECT_EQ(::pipe2(pipe, O_CLOEXEC | O_NONBLOCK), 0);
        asked = call.member() == "Inhibit" ? call.arguments().at(0).toString() : QString();
        connection.send(call.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(pipe[1]))));
        ::close(pipe[1]);
        return true;
    }

    QString asked;
    int pipe[2] = {-1, -1};
};

TEST(Sleep, IsInhibitedForAsLongAsTheObjectLives) {
    QProcess bus;
    bus.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    ASSERT_TRUE(bus.waitForReadyRead(5'000));
    const QByteArray address = bus.readAllStandardOutput().trimmed();
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
    QDBusConnection system = QDBusConnection::connectToBus(QString::fromLocal8Bit(address), "logind");
    FakeLogind logind;
    ASSERT_TRUE(system.registerVirtualObject("/org/freedesktop/login1", &logind));
    ASSERT_TRUE(system.registerService("org.freedesktop.login1"));
    char byte = 0;
    {
        const SleepInhibitor inhibitor;
        EXPECT_TRUE(waitServingEvents(5s, [&logind] { return logind.asked == "sleep:idle"; }));
        waitServingEvents(100ms, [] { return false; });
        EXPECT_EQ(::read(logind.pipe[0], &byte, 1), -1) << "somebody holds the other end";
    }
    EXPECT_EQ(::read(logind.pipe[0], &byte, 1), 0);
    QDBusConnection::disconnectFromBus("logind");
    bus.terminate();
    bus.waitForFinished();
}
