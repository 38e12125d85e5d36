/// The operation commands and their order.
#pragma once

#include "simulator/options.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace units {

/// The operation command of a request: "3005", code, unit, tail.
struct Operation {
    enum class Code { open = 50, download = 51, upload = 52, finish = 53, endTransfer = 54 };

    Code code;
    Unit unit;
};

/// Parses an operation command; nothing unless it is exactly one of the known ones.
std::optional<Operation> parseOperation(std::string_view command);

/// Checks the order of operations: "open" before a download; "end transfer" and then "finish" after any attempt,
/// successful or not.
class Operations {
public:
    /// The client has asked for the operation, which need not be accepted.
    /// @return why it is out of order, or nothing
    std::optional<std::string> request(const Operation& operation);

    /// The operation has been accepted.
    void accept(const Operation& operation);

private:
    struct State {
        bool open = false;
        bool tried = false;
        bool ended = false;
    };

    std::array<State, 2> states_;
};

}  // namespace units
