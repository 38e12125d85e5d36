#include "tests/simulator/frames.h"

#include "simulator/check_values.h"
#include "simulator/control_bytes.h"
#include "simulator/image.h"
#include "simulator/script.h"

namespace units::test {

namespace {

Bytes perform(Machine& machine, const Script& script, Time now) {
    if (!script.steps.empty())
        machine.sent(now);
    return bytesOf(script);
}

}  // namespace

Bytes requestFrame(std::string_view command) {
    Bytes frame = bytesOf("00000" + std::string(command) + "\x03");
    frame.push_back(blockCheck(frame));
    frame.insert(frame.begin(), kStx);
    return frame;
}

Bytes packet(unsigned number, std::span<const std::uint8_t> payload, CheckMode mode) {
    Bytes bytes;
    bytes.reserve(133);
    bytes.push_back(kSoh);
    bytes.push_back(static_cast<std::uint8_t>(number));
    bytes.push_back(static_cast<std::uint8_t>(~number));
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    if (mode == CheckMode::crc)
        bytes.push_back(static_cast<std::uint8_t>(crc16(payload) >> 8));
    bytes.push_back(static_cast<std::uint8_t>(mode == CheckMode::crc ? crc16(payload) : sum8(payload)));
    return bytes;
}

Bytes packetOf(const Bytes& image, unsigned number, CheckMode mode) {
    return packet(number, std::span(image).subspan((number - 1) * kBlockSize, kBlockSize), mode);
}

Bytes feed(Machine& machine, std::span<const std::uint8_t> bytes, Time& now) {
    Bytes answers;
    for (const std::uint8_t byte : bytes) {
        now += std::chrono::milliseconds(1);
        const Bytes answer = perform(machine, machine.take(byte, now), now);
        answers.insert(answers.end(), answer.begin(), answer.end());
    }
    return answers;
}

Bytes pass(Machine& machine, Time& now) {
    now = machine.deadline().value();
    return perform(machine, machine.timeout(now), now);
}

}  // namespace units::test
