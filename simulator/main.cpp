#include "simulator/bytes.h"
#include "simulator/command_line.h"
#include "simulator/image.h"
#include "simulator/options.h"
#include "simulator/simulator.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>
#include <span>
#include <string>
#include <vector>

namespace {

constexpr int kFaultless = 0;
constexpr int kViolated = 1;
constexpr int kUsage = 2;

bool isIgnored(int signal) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

/// Blocks the signals that end the program, in this thread and those it starts.
sigset_t blockEndSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGPIPE})
        sigaddset(&signals, signal);
    // nohup ignores SIGHUP; once blocked, it would end the wait all the same.
    if (!isIgnored(SIGHUP))
        sigaddset(&signals, SIGHUP);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

void waitForEnd(const units::Simulator& simulator, const sigset_t& signals) {
    constexpr timespec kInterval = {0, 20'000'000};
    while (!simulator.finished() && sigtimedwait(&signals, nullptr, &kInterval) < 0)
        continue;
}

bool imageArrived(const units::Simulator& simulator, const units::CommandLine& line) {
    const auto duration = simulator.downloadTime();
    if (!duration) {
        std::cerr << "no image arrived\n";
        return false;
    }
    std::printf("received: %zu bytes in %.3f s\n", units::kImageSize, std::chrono::duration<double>(*duration).count());
    if (line.expect.empty() || simulator.firmware(units::Unit::amplifier) == units::loadImage(line.expect))
        return true;
    std::cerr << "the image differs from the expected one\n";
    return false;
}

int simulate(const units::CommandLine& line) {
    const sigset_t signals = blockEndSignals();
    units::Simulator simulator(line.options);
    std::cout << "port: " << simulator.port() << std::endl;
    waitForEnd(simulator, signals);
    simulator.stop();
    for (const std::string& fault : simulator.unusedFaults())
        std::cerr << "fault that did not happen: " << fault << '\n';
    const bool complete = !line.options.receiveOnly || imageArrived(simulator, line);
    return complete && simulator.violations().empty() ? kFaultless : kViolated;
}

int perform(units::CommandLine line) {
    line.options.violationsToStderr = true;
    switch (line.task) {
    case units::CommandLine::Task::help:
        std::cout << units::commandLineHelp();
        return kFaultless;
    case units::CommandLine::Task::makeImage:
        units::saveImage(line.imageFile, units::makeImage(line.typeKey, line.version, line.seed));
        return kFaultless;
    case units::CommandLine::Task::simulate:
        break;
    }
    return simulate(line);
}

}  // namespace

int main(int argc, char* argv[]) {
    try {
        const std::span<char*> all(argv, static_cast<std::size_t>(argc));
        const std::vector<std::string> arguments(all.begin() + 1, all.end());
        return perform(units::parseCommandLine(arguments));
    } catch (const std::exception& error) {
        std::cerr << "dravolt-units: " << error.what() << '\n';
        return kUsage;
    }
}
