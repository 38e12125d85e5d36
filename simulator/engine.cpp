#include "simulator/engine.h"

#include "simulator/block_sender.h"
#include "simulator/bytes.h"
#include "simulator/packet_receiver.h"
#include "simulator/peer.h"
#include "simulator/wire.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <system_error>
#include <unistd.h>

namespace units {

namespace {

constexpr std::size_t kReadLimit = 4096;

/// Limit of the bytes queued here; the client's driver holds the rest.
constexpr std::size_t kPacedReadLimit = 256;

/// Waking up takes longer only on a busy machine, where one delay does not predict the next.
constexpr Time kUsualLateness = std::chrono::microseconds(250);

Time byteTime(unsigned rate) { return rate == 0 ? Time{0} : Time(std::chrono::seconds(10)) / rate; }

/// A write to a program that has ended must fail, not end this one.
void blockBrokenPipeSignal() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

timespec toTimespec(Time duration) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration);
    return {seconds.count(), (duration - seconds).count()};
}

}  // namespace

Engine::Engine(const Options& options, Devices& devices, FaultBook& faults, Journal& journal)
    : options_(options),
      devices_(devices),
      faults_(faults),
      journal_(journal),
      pty_(options),
      wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      arrivals_(byteTime(options.rate)),
      transmitter_(byteTime(options.rate)),
      commands_(devices, faults, journal, options.timing),
      machine_(&commands_) {
    if (wake_ < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
}

Engine::~Engine() { close(wake_); }

void Engine::run() {
    blockBrokenPipeSignal();
    prctl(PR_SET_TIMERSLACK, 1UL);
    if (options_.receiveOnly)
        startTransfer(makeReceiver(Unit::amplifier, false), now());
    while (!stop_) {
        receive();
        while (!stop_ && advance())
            continue;
        wait();
    }
}

void Engine::stop() {
    stop_ = true;
    eventfd_write(wake_, 1);
}

std::optional<Time> Engine::downloadTime() const {
    const std::lock_guard lock(mutex_);
    return downloadTime_;
}

bool Engine::advance() {
    if (gone())
        return false;
    const Time time = now();
    if (sending_)
        return transmit(time);
    if (machine_->over()) {
        changeMachine(time);
        return true;
    }
    if (!arrivals_.empty() && arrivals_.front().at <= time) {
        feed(time);
        return true;
    }
    const auto deadline = machine_->deadline();
    if (!deadline || *deadline > time)
        return false;
    // The client is not to blame if this program was late to look.
    if (receive())
        return true;
    // What a unit sends unasked may cross with what the client is sending.
    Script script = machine_->timeout(time);
    script.excusesEarlyBytes = true;
    play(std::move(script), time);
    return true;
}

bool Engine::receive() {
    const std::size_t limit = options_.rate == 0 ? kReadLimit : kPacedReadLimit - arrivals_.size();
    if (pty_.descriptor() < 0 || limit == 0)
        return false;
    const Bytes bytes = pty_.read(limit);
    if (bytes.empty() || gone())
        return false;
    arrivals_.add(bytes, now());
    if (options_.expectSpeed != 0) {
        const std::string flaw = pty_.settingsFlaw(options_.expectSpeed).value_or("");
        if (!flaw.empty() && flaw != settingsFlaw_)
            journal_.violation(now(), flaw);
        settingsFlaw_ = flaw;
    }
    if (sending_)
        judgeEarlyBytes();
    return true;
}

void Engine::judgeEarlyBytes() {
    if (earlyBytesExcused_ || arrivals_.empty())
        return;
    // A CAN need not wait for an answer.
    if (arrivals_.front().byte == kCan && (arrivals_.size() == 1 || arrivals_[1].byte == kCan))
        return;
    Bytes bytes;
    for (; !arrivals_.empty(); arrivals_.pop())
        bytes.push_back(arrivals_.front().byte);
    const std::size_t shown = std::min<std::size_t>(bytes.size(), 8);
    journal_.violation(now(), std::to_string(bytes.size()) + " bytes before the answer was complete, ignored: " +
                                  hexDump(std::span(bytes).first(shown)) + (shown < bytes.size() ? " ..." : ""));
}

void Engine::feed(Time until) {
    while (!sending_ && !machine_->over() && !arrivals_.empty() && arrivals_.front().at <= until) {
        const Arrivals::Arrival arrival = arrivals_.front();
        arrivals_.pop();
        play(machine_->take(arrival.byte, arrival.at), arrival.at);
    }
}

void Engine::play(Script script, Time from) {
    if (script.steps.empty())
        return;
    script.steps.front().pause += options_.answerLatency;
    transmitter_.load(script, from);
    sending_ = true;
    earlyBytesExcused_ = script.excusesEarlyBytes;
    judgeEarlyBytes();
}

bool Engine::transmit(Time time) {
    const Time due = transmitter_.front().due;
    if (due > time)
        return false;
    if (transmitter_.untouched())
        receive();
    const Transmitter::Portion portion = transmitter_.front();
    const std::size_t count = pty_.write(portion.bytes);
    blocked_ = count < portion.bytes.size();
    transmitter_.written(count, now());
    if (!blocked_ && portion.floodUntil == Time{0}) {
        // Waking up for the client's next bytes will take about as long as waking up for the clock did.
        arrivals_.forgive(now() - due + std::min(wakeLateness_, kUsualLateness));
        endScript(portion.ending, now());
    }
    return !blocked_;
}

void Engine::endScript(Step::Ending ending, Time time) {
    if (ending == Step::Ending::unplug)
        hangUp(time);
    if (ending == Step::Ending::mute) {
        journal_.note(time, "mute from here on");
        muted_ = true;
    }
    if (transmitter_.busy())
        return;
    sending_ = false;
    machine_->sent(time);
}

void Engine::changeMachine(Time time) {
    if (options_.receiveOnly) {
        finished_ = true;
        return;
    }
    if (!transfer_) {
        startTransfer(makeTransfer(*commands_.transfer()), time);
        return;
    }
    const auto rest = transfer_->handedBack();
    transfer_.reset();
    machine_ = &commands_;
    commands_.begin(time);
    if (rest)
        play(commands_.take(*rest, time), time);
}

std::unique_ptr<Machine> Engine::makeTransfer(const Transfer& transfer) {
    const std::string& peer = transfer.isDownload ? options_.receiver : options_.sender;
    if (!peer.empty())
        return std::make_unique<Peer>(peer, journal_);
    if (transfer.isDownload)
        return makeReceiver(transfer.unit, transfer.unsure);
    return std::make_unique<BlockSender>(devices_.firmware(transfer.unit), options_.uploadBlocks, transfer.unsure,
                                         faults_, journal_, options_.timing);
}

std::unique_ptr<Machine> Engine::makeReceiver(Unit unit, bool unsure) {
    const auto accept = [this, unit](const Bytes& image, Time duration) {
        devices_.install(unit, image);
        const std::lock_guard lock(mutex_);
        downloadTime_ = duration;
    };
    return std::make_unique<PacketReceiver>(devices_.checkMode(unit), unsure, faults_, journal_, options_.timing,
                                            accept);
}

void Engine::startTransfer(std::unique_ptr<Machine> machine, Time time) {
    transfer_ = std::move(machine);
    machine_ = transfer_.get();
    play(machine_->begin(time), time);
}

void Engine::hangUp(Time time) {
    journal_.note(time, "unplugged");
    pty_.unplug();
    transmitter_.clear();
}

std::optional<Time> Engine::nextEvent() const {
    if (gone())
        return std::nullopt;
    if (sending_) {
        const Transmitter::Portion& portion = transmitter_.front();
        if (!blocked_)
            return portion.due;
        return portion.floodUntil > Time{0} ? std::optional(portion.floodUntil) : std::nullopt;
    }
    const auto deadline = machine_->deadline();
    if (arrivals_.empty())
        return deadline;
    return deadline ? std::min(*deadline, arrivals_.back().at) : arrivals_.back().at;
}

void Engine::wait() {
    const bool mayRead = options_.rate == 0 || arrivals_.size() < kPacedReadLimit;
    const int events = (mayRead ? POLLIN : 0) | (sending_ && blocked_ ? POLLOUT : 0);
    std::array<pollfd, 4> waiting = {{{wake_, POLLIN, 0},
                                      {pty_.descriptor(), static_cast<short>(events), 0},
                                      {pty_.closings(), POLLIN, 0},
                                      {sending_ || gone() ? -1 : machine_->descriptor(), POLLIN, 0}}};
    const auto next = nextEvent();
    const timespec timeout = toTimespec(std::max(next.value_or(Time{0}) - now(), Time{0}));
    if (ppoll(waiting.data(), waiting.size(), next ? &timeout : nullptr, nullptr) == 0)
        wakeLateness_ = now() - next.value_or(now());
    if (waiting[2].revents != 0)
        pty_.forgetClient();
    if (waiting[3].revents != 0)
        play(machine_->readable(now()), now());
}

}  // namespace units
