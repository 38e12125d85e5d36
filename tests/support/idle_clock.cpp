/// A monotonic clock for test programs that link it: as soon as program and simulated units both sleep with nothing
/// pending, it jumps to the end of the nearer wait. So time-outs are real, but take no time, and load makes neither of
/// the two late for the other. The functions at the end replace the C library's; only those two threads call ppoll().
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <dlfcn.h>
#include <limits>
#include <mutex>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
constexpr std::int64_t kNever = std::numeric_limits<std::int64_t>::max();

std::atomic<std::int64_t> jumped = 0;  ///< nanoseconds

std::int64_t now() {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * kSecond + time.tv_nsec;
}

/// The kernel's ppoll(); `wait` in nanoseconds.
int kernelPoll(std::vector<pollfd>& awaited, std::int64_t wait) {
    const timespec timeout{wait / kSecond, wait % kSecond};
    return static_cast<int>(
        syscall(SYS_ppoll, awaited.data(), awaited.size(), wait == kNever ? nullptr : &timeout, nullptr, 8));
}

/// One of the two threads.
struct Sleeper {
    const int alarm = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);  ///< ends a wait when the clock jumps past its end
    bool sleeps = false;
    std::int64_t until = kNever;
    std::vector<pollfd> awaited{};  ///< the last one is the alarm

    bool hasWork() {
        std::vector<pollfd> looked = awaited;
        return kernelPoll(looked, 0) != 0;
    }
};

std::mutex mutex;
std::array<Sleeper, 2> sleepers;  // the program, the units

/// GLib would use poll().
[[maybe_unused]] const int kNoGlib = setenv("QT_NO_GLIB", "1", 1);

/// If both sleep with nothing pending, moves the clock to the end of the nearer wait.
void jump() {
    for (Sleeper& sleeper : sleepers)
        if (!sleeper.sleeps || sleeper.hasWork())
            return;
    Sleeper& next = sleepers[0].until < sleepers[1].until ? sleepers[0] : sleepers[1];
    if (next.until == kNever)
        return;
    jumped += std::max<std::int64_t>(next.until - now(), 0);
    eventfd_write(next.alarm, 1);
}

}  // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    static const auto kernels = reinterpret_cast<int (*)(clockid_t, timespec*)>(dlsym(RTLD_NEXT, "clock_gettime"));
    const int result = kernels(clock, time);
    if (clock == CLOCK_MONOTONIC && result == 0) {
        const std::int64_t sum = time->tv_sec * kSecond + time->tv_nsec + jumped;
        *time = {sum / kSecond, sum % kSecond};
    }
    return result;
}

extern "C" int ppoll(pollfd* polled, nfds_t count, const timespec* timeout, const sigset_t*) {
    // A busy peer usually answers within a millisecond, which saves the bookkeeping.
    constexpr std::int64_t kAtWork = kSecond / 1'000;
    thread_local Sleeper& self = sleepers[gettid() == getpid() ? 0 : 1];
    std::vector<pollfd> awaited(polled, polled + count);
    const std::int64_t wait = timeout == nullptr ? kNever : timeout->tv_sec * kSecond + timeout->tv_nsec;
    const std::int64_t end = timeout == nullptr ? kNever : now() + wait;
    int ready = kernelPoll(awaited, std::min(wait, kAtWork));
    if (ready == 0 && wait > kAtWork) {
        awaited.push_back({self.alarm, POLLIN, 0});
        {
            const std::lock_guard lock(mutex);
            self.awaited = awaited;
            self.until = end;
            self.sleeps = true;
            jump();
        }
        ready = kernelPoll(awaited, wait);
        const std::lock_guard lock(mutex);
        self.sleeps = false;
        eventfd_t rung = 0;
        if (eventfd_read(self.alarm, &rung) == 0 && awaited.back().revents != 0)
            --ready;
    }
    for (nfds_t i = 0; i < count; ++i)
        polled[i].revents = awaited[i].revents;
    return ready;
}
