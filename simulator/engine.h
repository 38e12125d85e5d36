/// Connects the machines to the port and the clock. Only run() is bound to one thread.
#pragma once

#include "simulator/command_machine.h"
#include "simulator/devices.h"
#include "simulator/fault_book.h"
#include "simulator/journal.h"
#include "simulator/line.h"
#include "simulator/machine.h"
#include "simulator/options.h"
#include "simulator/pty.h"
#include "simulator/script.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace units {

class Engine {
public:
    /// Opens the port.
    /// @throws std::system_error  the port cannot be opened
    Engine(const Options& options, Devices& devices, FaultBook& faults, Journal& journal);
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    const std::string& port() const { return pty_.port(); }

    /// Serves the port until stop().
    void run();
    void stop();

    /// Whether the one download of a receive-only simulation is over.
    bool finished() const { return finished_; }

    /// Time from the first byte of the first packet to the end of the last complete download.
    std::optional<Time> downloadTime() const;

private:
    Time now() const { return std::chrono::steady_clock::now() - start_; }
    bool gone() const { return pty_.descriptor() < 0 || muted_ || finished_; }
    bool advance();
    bool receive();
    void judgeEarlyBytes();
    void feed(Time until);
    void play(Script script, Time from);
    bool transmit(Time time);
    void endScript(Step::Ending ending, Time time);
    void changeMachine(Time time);
    std::unique_ptr<Machine> makeTransfer(const Transfer& transfer);
    std::unique_ptr<Machine> makeReceiver(Unit unit, bool unsure);
    void startTransfer(std::unique_ptr<Machine> machine, Time time);
    void hangUp(Time time);
    std::optional<Time> nextEvent() const;
    void wait();

    const Options options_;
    Devices& devices_;
    FaultBook& faults_;
    Journal& journal_;
    const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    Pty pty_;
    int wake_;

    Arrivals arrivals_;
    Transmitter transmitter_;
    CommandMachine commands_;
    std::unique_ptr<Machine> transfer_;  ///< null while commands are answered
    Machine* machine_;
    bool sending_ = false;
    Time wakeLateness_{0};  ///< how late this thread last woke up
    bool blocked_ = false;
    bool earlyBytesExcused_ = false;
    bool muted_ = false;
    std::string settingsFlaw_;

    std::atomic<bool> stop_ = false;
    std::atomic<bool> finished_ = false;
    mutable std::mutex mutex_;
    std::optional<Time> downloadTime_;
};

}  // namespace units
