#include "system/event_wait.h"
#include "system/single_instance.h"
#include "system/sleep_inhibitor.h"
#include "system/standard_error.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServer>
#include <QDBusUnixFileDescriptor>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <unistd.h>

using namespace std::chrono_literals;

TEST(EventWait, SleepsUntilTheLimit) {
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(waitServingEvents(300ms, [looks = 0]() mutable { return ++looks > 100; }));
    EXPECT_GE(clock.elapsed(), 300);
}

TEST(SingleInstance, IsTheOneThatHoldsTheLock) {
    const QString path = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) + "/dravolt.lock";
    const int other = ::open(qPrintable(path), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ::flock(other, LOCK_SH);
    EXPECT_FALSE(isOnlyInstance());
    ::flock(other, LOCK_UN);
    EXPECT_TRUE(isOnlyInstance()) << "a copy that has ended does not block the next";
    EXPECT_EQ(::flock(other, LOCK_EX | LOCK_NB), -1) << "a later copy is locked out";
    ::close(other);
}

TEST(SingleInstanceDeathTest, WithoutALockCountsAsTheOnlyCopy) {
    const QTemporaryDir here;
    ASSERT_TRUE(QFile::link("target", here.filePath("dravolt.lock")));
    const auto ask = [](const QString& runtimeFolder) {
        qputenv("XDG_RUNTIME_DIR", runtimeFolder.toLocal8Bit());
        // If it can, Qt creates one in the temporary folder.
        qputenv("TMPDIR", "/dev/null");
        std::_Exit(isOnlyInstance() ? 0 : 1);
    };
    const auto ended = testing::ExitedWithCode(0);
    EXPECT_EXIT(ask("/dev/null"), ended, "there is no runtime folder; a second copy cannot be noticed");
    EXPECT_EXIT(ask(here.path()), ended, "dravolt.lock: .*; a second copy cannot be noticed");
    EXPECT_FALSE(QFile::exists(here.filePath("target")));
}

enum Reader { gone, asleep, closed };

static void complainTo(Reader reader) {
    int ends[2];
    std::ignore = ::pipe2(ends, O_CLOEXEC);
    ::dup2(ends[1], STDERR_FILENO);
    ::close(ends[reader == gone ? 0 : 1]);
    if (reader == closed)
        ::close(STDERR_FILENO);
    guardStandardError();
    ::alarm(10);
    for (int i = 0; i < 2'000; ++i) {
        complain(QString(1'000, QLatin1Char('x')));
        std::ignore = ::write(STDERR_FILENO, "from a library", 14);
    }
    std::_Exit(::open("/dev/null", O_RDONLY) > STDERR_FILENO ? 0 : 1);
}

TEST(StandardErrorDeathTest, NeitherEndsNorDelaysTheProgram) {
    for (const Reader reader : {gone, asleep, closed})
        EXPECT_EXIT(complainTo(reader), testing::ExitedWithCode(0), "") << reader;
    EXPECT_EXIT((guardStandardError(), qWarning("heard\x1b]0;\u202e"), std::_Exit(0)), testing::ExitedWithCode(0),
                "dravolt: heard\\?]0;\\?");
}

/// A bus with a logind whose inhibitor locks are write ends of one pipe; it refuses one.
class FakeLogind : public QDBusVirtualObject {
public:
    FakeLogind() {
        EXPECT_EQ(::pipe2(pipe_, O_CLOEXEC | O_NONBLOCK), 0);
        ::close(pipe_[1]);
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
        if (call.member() == "Hello")
            return bus.send(call.createReply(":1.1"));
        const QString what = call.arguments().value(0).toString();
        asked += call.member() + ' ' + what + ' ' + call.arguments().value(3).toString();
        if (what == "shutdown")
            return bus.send(call.createErrorReply(QDBusError::AccessDenied, "no"));
        beforeReply();
        const int end = ::open(qPrintable(QString("/dev/fd/%1").arg(pipe_[0])), O_WRONLY | O_CLOEXEC);
        bus.send(call.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(end))));
        return ::close(end) == 0;
    }

    /// Whether an inhibitor lock is still held after this many milliseconds.
    bool isHeld(int time) const {
        pollfd writers{pipe_[0], 0, 0};
        return ::poll(&writers, 1, time) == 0;
    }

    QStringList asked;
    std::function<void()> beforeReply = [] {};

private:
    int pipe_[2];
};

TEST(Sleep, IsInhibitedDuringATransfer) {
    QDBusServer server("unix:tmpdir=/tmp");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", server.address().toUtf8());
    FakeLogind logind;
    QStringList clients;
    QObject::connect(&server, &QDBusServer::newConnection, &server, [&logind, &clients](QDBusConnection bus) {
        bus.registerVirtualObject("/", &logind, QDBusConnection::SubPath);
        clients += bus.name();
    });
    auto transfer = std::make_unique<SleepInhibitor>();
    EXPECT_TRUE(SleepInhibitor::isHeld());
    EXPECT_TRUE(waitServingEvents(5s, [&logind] { return logind.asked.size() == 4; }));
    EXPECT_EQ(logind.asked, QStringList({"Inhibit sleep block", "Inhibit shutdown block",
                                         "Inhibit handle-lid-switch block", "Inhibit idle block"}));
    EXPECT_TRUE(logind.isHeld(200));
    transfer.reset();
    EXPECT_FALSE(SleepInhibitor::isHeld());
    EXPECT_FALSE(logind.isHeld(5'000));
    logind.beforeReply = [&transfer] { transfer.reset(); };
    transfer = std::make_unique<SleepInhibitor>();
    EXPECT_TRUE(waitServingEvents(5s, [&transfer] { return transfer == nullptr; }));
    EXPECT_FALSE(logind.isHeld(5'000)) << "what comes after the end of the transfer";
    for (const QString& client : clients)
        QDBusConnection::disconnectFromPeer(client);
}

TEST(Sleep, ABusThatNeverAnswersDelaysNothing) {
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unixexec:path=sleep,argv1=9");
    QElapsedTimer clock;
    clock.start();
    std::make_unique<SleepInhibitor>().reset();
    EXPECT_LT(clock.elapsed(), 1'000);
    waitServingEvents(100ms, [] { return false; });
}
