/// A program that stands in for a unit for one transfer: it reads what the client sends on standard input, and its
/// standard output goes to the client. It is killed if it is still running at the end.
#pragma once

#include "simulator/journal.h"
#include "simulator/machine.h"
#include "simulator/options.h"
#include "simulator/script.h"

#include <string>
#include <sys/types.h>

namespace units {

class Peer final : public Machine {
public:
    Peer(std::string command, Journal& journal) : command_(std::move(command)), journal_(journal) {}
    ~Peer() override;
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    /// Starts the program.
    /// @throws std::system_error  it cannot be started
    Script begin(Time now) override;
    Script take(std::uint8_t byte, Time now) override;
    void sent(Time) override {}
    Script timeout(Time) override { return {}; }
    std::optional<Time> deadline() const override { return std::nullopt; }
    bool over() const override { return output_ < 0; }
    int descriptor() const override { return output_; }
    Script readable(Time now) override;

private:
    void finish(Time now);

    std::string command_;
    Journal& journal_;
    pid_t process_ = -1;
    int input_ = -1;
    int output_ = -1;
    unsigned long taken_ = 0;
    unsigned long produced_ = 0;
    Time lastEvent_{0};
};

}  // namespace units
