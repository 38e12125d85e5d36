#include "system/event_wait.h"
#include "system/program_end.h"
#include "system/single_instance.h"
#include "system/sleep_inhibitor.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
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
    EXPECT_EXIT(
        {
            QTimer::singleShot(0, endProgram);
            QEventLoop outer;
            QTimer::singleShot(0, [] { QEventLoop().exec(); });
            outer.exec();
        },
        testing::ExitedWithCode(0), "");
}

TEST(SingleInstance, IsRefusedWhileAnotherHoldsTheLock) {
    const QString path = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + "/dravolt.lock";
    const int other = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(other, 0);
    ASSERT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0) << "a copy of the program is running";
    EXPECT_FALSE(isOnlyInstance());
    ::close(other);
    EXPECT_TRUE(isOnlyInstance()) << "a killed copy does not block the next";
    const int later = ::open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC);
    EXPECT_NE(::flock(later, LOCK_EX | LOCK_NB), 0) << "and this one holds the lock from now on";
    ::close(later);
}

/// A logind that hands out one end of a pipe and keeps the other.
class FakeLogind : public QDBusVirtualObject {
public:
    FakeLogind() { EXPECT_EQ(::pipe2(pipe_, O_CLOEXEC | O_NONBLOCK), 0); }
    ~FakeLogind() override { ::close(pipe_[0]); }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override {
        asked = call.member() == "Inhibit" ? call.arguments().at(0).toString() : QString();
        connection.send(call.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(pipe_[1]))));
        ::close(pipe_[1]);
        return true;
    }

    /// Whether somebody still holds the descriptor that was handed out.
    bool isHeld() const {
        char byte = 0;
        return ::read(pipe_[0], &byte, 1) < 0;
    }

    QString asked;

private:
    int pipe_[2] = {-1, -1};
};

TEST(Sleep, IsInhibitedForAsLongAsTheObjectLives) {
    QProcess bus;
    bus.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
    ASSERT_TRUE(bus.waitForReadyRead(5'000));
    const QByteArray address = bus.readAllStandardOutput().trimmed();
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", address);
    QDBusConnection logindsOwn = QDBusConnection::connectToBus(QString::fromLocal8Bit(address), "logind");
    FakeLogind logind;
    ASSERT_TRUE(logindsOwn.registerVirtualObject("/org/freedesktop/login1", &logind));
    ASSERT_TRUE(logindsOwn.registerService("org.freedesktop.login1"));
    {
        const SleepInhibitor inhibitor;
        EXPECT_TRUE(waitServingEvents(5s, [&logind] { return !logind.asked.isEmpty(); }));
        waitServingEvents(100ms, [] { return false; });
        EXPECT_EQ(logind.asked, "sleep:idle");
        EXPECT_TRUE(logind.isHeld());
    }
    EXPECT_FALSE(logind.isHeld());
    QDBusConnection::disconnectFromBus("logind");
    bus.terminate();
    bus.waitForFinished();
}
