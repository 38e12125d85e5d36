#include "simulator/command_machine.h"

#include "simulator/bytes.h"
#include "simulator/fault.h"
#include "simulator/wire.h"

namespace units {

namespace {

constexpr std::size_t kCodeSize = 4;
constexpr const char* kUnknownCommand = "1001";
constexpr const char* kOutOfOrder = "1003";

bool disobeys(const ActiveFaults& faults) {
    return faults.has(FaultKind::endcode) || faults.has(FaultKind::response) || faults.has(FaultKind::unplug) ||
           faults.has(FaultKind::mute);
}

void falsify(Reply& reply, const ActiveFaults& faults) {
    for (const Fault& fault : faults) {
        if (fault.kind == FaultKind::endcode) {
            reply.endCode = fault.code;
        } else if (fault.kind == FaultKind::response) {
            reply.endCode = "0F";
            reply.response = fault.code;
            reply.data.clear();
        } else if (fault.kind == FaultKind::data) {
            reply.data = fault.bytes;
        }
    }
}

Reply refusal(Reply reply, const char* response) {
    reply.endCode = "0F";
    reply.response = response;
    return reply;
}

std::string describe(const Reply& reply) {
    return "reply " + reply.command + ", end code " + reply.endCode + ", response " + reply.response + ", data '" +
           printable(std::string(reply.data.begin(), reply.data.end())) + "'";
}

}  // namespace

Script CommandMachine::begin(Time) {
    cancelMayFollow_ = transfer_.has_value();
    transfer_.reset();
    return {};
}

Script CommandMachine::take(std::uint8_t byte, Time now) {
    // A client that cancels sends more CANs than needed; the rest arrive here.
    if (byte == kCan && cancelMayFollow_ && !parser_.waits())
        return {};
    lastByte_ = now;
    const RequestParser::Result result = parser_.take(byte);
    if (result.violation)
        journal_.violation(now, *result.violation);
    return result.command ? answer(*result.command, now) : Script{};
}

Script CommandMachine::timeout(Time now) {
    if (const auto result = parser_.silence(); result.violation)
        journal_.violation(now, *result.violation);
    return {};
}

std::optional<Time> CommandMachine::deadline() const {
    return parser_.waits() ? std::optional(lastByte_ + timing_.byteGap) : std::nullopt;
}

Script CommandMachine::answer(const std::string& command, Time now) {
    journal_.request(now, command, parser_.frame());
    cancelMayFollow_ = false;
    const ActiveFaults faults = faults_.occur({PlaceKind::command, command, 0});
    if (!faults.empty())
        journal_.note(now, "fault " + faults.text());

    const bool silent = faults.has(FaultKind::silence);
    Reply reply = execute(command, !silent && !disobeys(faults), now);
    if (silent || command.size() < kCodeSize)
        return {};
    falsify(reply, faults);
    // A client that repeats a request before a late answer takes that for the answer to the repeat.
    const bool answersLate = now < answered_;
    if (transfer_)
        startUnsure_ = transfer_->unsure = !faults.empty() || answersLate;
    Script script = shape(encode(reply), faults);
    script.excusesEarlyBytes = script.excusesEarlyBytes || answersLate;
    journal_.sent(now, describe(reply), bytesOf(script));
    return script;
}

Reply CommandMachine::execute(const std::string& command, bool obey, Time now) {
    Reply reply;
    reply.command = command.substr(0, kCodeSize);
    if (command == "0501")
        reply.data = bytesOf(devices_.attributes());
    else if (command == "0601")
        reply.data = bytesOf(devices_.status());
    else if (command == "0101D40001000001")
        reply.data = bytesOf("0000" + hexNumber(devices_.typeNumber(), 4));
    else if (command == "0101D50001000001")
        reply.data = bytesOf("000000" + hexNumber(devices_.kind(), 2));
    else if (const auto operation = parseOperation(command))
        return operate(*operation, std::move(reply), obey, now);
    else
        return refuse(std::move(reply), kUnknownCommand, "unknown command '" + command + "'", now);
    return reply;
}

Reply CommandMachine::operate(const Operation& operation, Reply reply, bool obey, Time now) {
    if (const auto reason = operations_.request(operation)) {
        // The client does not know that its first attempt was carried out.
        if (startUnsure_)
            return refusal(std::move(reply), kOutOfOrder);
        return refuse(std::move(reply), kOutOfOrder, *reason, now);
    }
    if (!obey)
        return reply;
    operations_.accept(operation);
    if (operation.code == Operation::Code::download || operation.code == Operation::Code::upload)
        transfer_ = Transfer{operation.code == Operation::Code::download, operation.unit, false};
    return reply;
}

Reply CommandMachine::refuse(Reply reply, const char* response, const std::string& reason, Time now) {
    journal_.violation(now, reason);
    return refusal(std::move(reply), response);
}

}  // namespace units
