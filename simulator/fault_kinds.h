#pragma once

#include "simulator/fault.h"

#include <initializer_list>
#include <span>
#include <string_view>

namespace units {

/// What has to follow the colon of a fault.
enum class FaultValue { none, number, byte, numberAndPause, hex, code2, code4, data };

/// One line of the table of kinds.
struct FaultKindInfo {
    FaultKind kind;
    std::string_view name;
    FaultValue value;
    std::initializer_list<PlaceKind> places;
    std::string_view help;
};

std::span<const FaultKindInfo> faultKinds();

}  // namespace units
