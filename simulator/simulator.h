/// A sensor amplifier and its interface unit on a serial port, run by a thread of its own from construction to stop()
/// or destruction. Thread-safe.
#pragma once

#include "simulator/bytes.h"
#include "simulator/devices.h"
#include "simulator/engine.h"
#include "simulator/fault_book.h"
#include "simulator/journal.h"
#include "simulator/options.h"

#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace units {

class Simulator {
public:
    /// @throws std::invalid_argument  an option or a fault is wrong
    /// @throws std::runtime_error     a file or the port cannot be opened
    explicit Simulator(const Options& options = {});
    ~Simulator();
    Simulator(const Simulator&) = delete;
    Simulator& operator=(const Simulator&) = delete;

    /// Path of the port for the client to open.
    const std::string& port() const { return engine_.port(); }

    /// How the client violated the format or order of the conversation.
    std::vector<std::string> violations() const { return journal_.violations(); }

    /// Command texts of all well-formed requests, in order.
    std::vector<std::string> requests() const { return journal_.requests(); }

    /// Faults that have not happened yet.
    std::vector<std::string> unusedFaults() const { return faults_.unused(); }

    Bytes firmware(Unit unit) const { return devices_.firmware(unit); }

    /// Time from the first byte of the first packet to the end of the last accepted image.
    std::optional<Time> downloadTime() const { return engine_.downloadTime(); }

    /// Whether a line of the journal contains the text.
    bool hasNoted(std::string_view text) const { return journal_.contains(text); }

    /// Whether the one download of a receive-only simulation is over, successful or not.
    bool finished() const { return engine_.finished(); }

    /// Ends the service. The port stays open until destruction.
    void stop();

private:
    Journal journal_;
    FaultBook faults_;
    Devices devices_;
    Engine engine_;
    std::thread thread_;
};

}  // namespace units
