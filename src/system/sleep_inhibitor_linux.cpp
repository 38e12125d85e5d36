#include "system/sleep_inhibitor.h"

#include <dbus/dbus.h>
#include <mutex>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

static int held = 0;

/// An inhibition lasts until its descriptor is closed.
struct SleepInhibitor::Locks {
    std::mutex mutex;
    bool released = false;
    std::vector<int> descriptors;

    /// Keeps `descriptor`, or closes it when the transfer has ended meanwhile.
    void keep(int descriptor) {
        const std::scoped_lock lock(mutex);
        if (released)
            ::close(descriptor);
        else
            descriptors.push_back(descriptor);
    }

    void release() {
        const std::scoped_lock lock(mutex);
        released = true;
        for (const int descriptor : descriptors)
            ::close(descriptor);
        descriptors.clear();
    }

    bool isReleased() {
        const std::scoped_lock lock(mutex);
        return released;
    }
};

/// Asks logind on `bus` to block `what`. @return the descriptor that holds the inhibition, or -1
static int inhibit(DBusConnection* bus, const char* what) {
    constexpr int kPatienceMs = 5'000;
    const char* who = "Dravolt";
    const char* why = "A firmware transfer is running";
    const char* mode = "block";
    DBusMessage* call = dbus_message_new_method_call("org.freedesktop.login1", "/org/freedesktop/login1",
                                                     "org.freedesktop.login1.Manager", "Inhibit");
    dbus_message_append_args(call, DBUS_TYPE_STRING, &what, DBUS_TYPE_STRING, &who, DBUS_TYPE_STRING, &why,
                             DBUS_TYPE_STRING, &mode, DBUS_TYPE_INVALID);
    DBusMessage* reply = dbus_connection_send_with_reply_and_block(bus, call, kPatienceMs, nullptr);
    dbus_message_unref(call);
    if (reply == nullptr)
        return -1;
    int descriptor = -1;
    if (dbus_message_get_args(reply, nullptr, DBUS_TYPE_UNIX_FD, &descriptor, DBUS_TYPE_INVALID) == 0)
        descriptor = -1;
    dbus_message_unref(reply);
    return descriptor;
}

/// Takes each inhibition separately, as logind may refuse a user some of them.
static void takeAll(SleepInhibitor::Locks& locks) {
    DBusConnection* bus = dbus_bus_get_private(DBUS_BUS_SYSTEM, nullptr);
    if (bus == nullptr)
        return;
    dbus_connection_set_exit_on_disconnect(bus, 0);
    for (const char* what : {"sleep", "shutdown", "handle-lid-switch", "idle"}) {
        if (locks.isReleased())
            break;
        if (const int descriptor = inhibit(bus, what); descriptor >= 0)
            locks.keep(descriptor);
    }
    dbus_connection_close(bus);
    dbus_connection_unref(bus);
}

/// The only thread that talks to logind. A bus that never answers blocks it for good.
class Asker {
public:
    /// Queues `locks` behind those that the thread is working on.
    void ask(std::shared_ptr<SleepInhibitor::Locks> locks) {
        const std::scoped_lock lock(mutex_);
        next_ = std::move(locks);
        if (runs_)
            return;
        try {
            std::thread([this] { run(); }).detach();
            runs_ = true;
        } catch (const std::system_error&) {
            // No thread available: the transfer goes on without inhibitors.
            next_.reset();
        }
    }

private:
    void run() {
        while (const auto locks = takeNext())
            takeAll(*locks);
    }

    std::shared_ptr<SleepInhibitor::Locks> takeNext() {
        const std::scoped_lock lock(mutex_);
        runs_ = next_ != nullptr;
        return std::exchange(next_, nullptr);
    }

    std::mutex mutex_;
    std::shared_ptr<SleepInhibitor::Locks> next_;
    bool runs_ = false;
};

SleepInhibitor::SleepInhibitor() : locks_(std::make_shared<Locks>()) {
    // Never destroyed, as its thread may outlive main().
    static auto& asker = *new Asker;
    ++held;
    dbus_threads_init_default();
    asker.ask(locks_);
}

SleepInhibitor::~SleepInhibitor() {
    --held;
    locks_->release();
}

bool SleepInhibitor::isHeld() { return held > 0; }
