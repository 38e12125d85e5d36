#pragma once

#include "simulator/wire.h"
#include "simulator/image.h"
#include "simulator/machine.h"

#include <string>
#include <string_view>

namespace units::test {

/// A well-formed request with the command text.
inline Bytes requestFrame(std::string_view command) {
    Bytes frame = bytesOf("00000" + std::string(command) + "\x03");
    frame.push_back(blockCheck(frame));
    frame.insert(frame.begin(), kStx);
    return frame;
}

/// A sample image.
inline const Bytes& image() {
    static const Bytes bytes = makeImage("SV-AMP", 12504, 3);
    return bytes;
}

/// A well-formed packet under a number that need not be in range, with a block of the sample image.
inline Bytes packet(unsigned number, CheckMode mode = CheckMode::crc) {
    const auto payload =
        std::span(image()).subspan((number + kImageBlocks - 1) % kImageBlocks * kBlockSize, kBlockSize);
    Bytes bytes(payload.begin(), payload.end());
    bytes.insert(bytes.begin(), {kSoh, static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(~number)});
    if (mode == CheckMode::crc)
        bytes.push_back(static_cast<std::uint8_t>(crc16(payload) >> 8));
    bytes.push_back(static_cast<std::uint8_t>(mode == CheckMode::crc ? crc16(payload) : sum8(payload)));
    return bytes;
}

/// Tells a machine that its script has been sent, and returns what that was.
inline Bytes perform(Machine& machine, const Script& script, Time now) {
    if (!script.steps.empty())
        machine.sent(now);
    return bytesOf(script);
}

/// Gives bytes to a machine one millisecond apart and returns all it sends.
inline Bytes feed(Machine& machine, std::span<const std::uint8_t> bytes, Time& now) {
    Bytes answers;
    for (const std::uint8_t byte : bytes) {
        now += std::chrono::milliseconds(1);
        const Bytes answer = perform(machine, machine.take(byte, now), now);
        answers.insert(answers.end(), answer.begin(), answer.end());
    }
    return answers;
}

/// Lets the deadline of a machine pass and returns what it sends.
inline Bytes pass(Machine& machine, Time& now) {
    now = machine.deadline().value();
    return perform(machine, machine.timeout(now), now);
}

}  // namespace units::test
