#include "simulator/operations.h"

namespace units {

namespace {

struct Form {
    std::string_view code;
    std::string_view tail;
    Operation::Code meaning;
};

constexpr Form kForms[] = {
    {"50", "0000", Operation::Code::open},        {"51", "0C00", Operation::Code::download},
    {"52", "0C00", Operation::Code::upload},      {"53", "0000", Operation::Code::finish},
    {"54", "0000", Operation::Code::endTransfer},
};

constexpr std::string_view kCommand = "3005";
constexpr std::size_t kSize = 12;

std::optional<Unit> parseUnit(std::string_view text) {
    if (text == "00")
        return Unit::interface;
    if (text == "01")
        return Unit::amplifier;
    return std::nullopt;
}

}  // namespace

std::optional<Operation> parseOperation(std::string_view command) {
    if (command.size() != kSize || !command.starts_with(kCommand))
        return std::nullopt;
    const auto unit = parseUnit(command.substr(6, 2));
    for (const Form& form : kForms)
        if (unit && command.substr(4, 2) == form.code && command.substr(8) == form.tail)
            return Operation{form.meaning, *unit};
    return std::nullopt;
}

std::optional<std::string> Operations::request(const Operation& operation) {
    State& state = states_[static_cast<std::size_t>(operation.unit)];
    switch (operation.code) {
    case Operation::Code::endTransfer:
        if (!state.tried)
            return "end of transfer (54) without an operation before it";
        state.ended = true;
        return std::nullopt;
    case Operation::Code::finish:
        if (!state.ended)
            return "finish (53) without end of transfer (54) before it";
        return std::nullopt;
    case Operation::Code::download:
        if (!state.open)
            return "download (51) without an accepted open (50) before it";
        break;
    case Operation::Code::open:
    case Operation::Code::upload:
        break;
    }
    state.tried = true;
    state.ended = false;
    return std::nullopt;
}

void Operations::accept(const Operation& operation) {
    State& state = states_[static_cast<std::size_t>(operation.unit)];
    state.open = operation.code == Operation::Code::open;
}

}  // namespace units
