/// The units between transfers, answering commands.
#pragma once

#include "simulator/command_frames.h"
#include "simulator/devices.h"
#include "simulator/fault_book.h"
#include "simulator/journal.h"
#include "simulator/machine.h"
#include "simulator/operations.h"
#include "simulator/options.h"
#include "simulator/script.h"

#include <optional>
#include <string>

namespace units {

/// A download or upload started by a request.
struct Transfer {
    bool isDownload;
    Unit unit;
    bool unsure;  ///< because of a fault the client may not know that it has started
};

/// Answers requests until one of them starts a transfer, and again when that is over.
class CommandMachine final : public Machine {
public:
    CommandMachine(const Devices& devices, FaultBook& faults, Journal& journal, const Timing& timing)
        : devices_(devices), faults_(faults), journal_(journal), timing_(timing) {}

    Script begin(Time now) override;
    Script take(std::uint8_t byte, Time now) override;
    void sent(Time now) override { answered_ = now; }
    Script timeout(Time now) override;
    std::optional<Time> deadline() const override;
    bool over() const override { return transfer_.has_value(); }

    /// The transfer that ended the machine, until begin().
    const std::optional<Transfer>& transfer() const { return transfer_; }

private:
    Script answer(const std::string& command, Time now);
    Reply execute(const std::string& command, bool obey, Time now);
    Reply operate(const Operation& operation, Reply reply, bool obey, Time now);
    Reply refuse(Reply reply, const char* response, const std::string& reason, Time now);

    const Devices& devices_;
    FaultBook& faults_;
    Journal& journal_;
    Timing timing_;
    RequestParser parser_;
    Operations operations_;
    std::optional<Transfer> transfer_;
    bool cancelMayFollow_ = false;
    bool startUnsure_ = false;  ///< the last start of a transfer was carried out but not answered properly
    Time lastByte_{0};
    Time answered_{0};  ///< when the last answer was complete
};

}  // namespace units
