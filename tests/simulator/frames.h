#pragma once

#include "simulator/bytes.h"
#include "simulator/machine.h"
#include "simulator/options.h"

#include <string_view>

namespace units::test {

/// A well-formed request with the command text.
Bytes requestFrame(std::string_view command);

/// A well-formed packet with 128 bytes of payload.
Bytes packet(unsigned number, std::span<const std::uint8_t> payload, CheckMode mode);

/// Packet `number`, from 1, of an image.
Bytes packetOf(const Bytes& image, unsigned number, CheckMode mode);

/// Gives bytes to a machine one millisecond apart, as if its scripts were sent at once, and returns all it sends.
Bytes feed(Machine& machine, std::span<const std::uint8_t> bytes, Time& now);

/// Lets the deadline of a machine pass and returns what it sends.
Bytes pass(Machine& machine, Time& now);

}  // namespace units::test
