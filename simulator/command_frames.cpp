#include "simulator/command_frames.h"

#include "simulator/wire.h"

#include <span>
#include <string_view>

namespace units {

namespace {

/// Node, sub-address and service identifier of every request.
constexpr std::string_view kHeader = "00000";

bool isCommandCharacter(std::uint8_t byte) { return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z'); }

}  // namespace

RequestParser::Result RequestParser::take(std::uint8_t byte) {
    switch (state_) {
    case State::inside:
        return add(byte);
    case State::check:
        return finish(byte);
    case State::skipping:
        return byte == kStx ? begin(byte) : Result{};
    case State::outside:
        break;
    }
    return begin(byte);
}

RequestParser::Result RequestParser::silence() {
    const bool brokenOff = inFrame();
    state_ = State::outside;
    if (!brokenOff)
        return {};
    return {std::nullopt, "request incomplete after " + std::to_string(frame_.size()) + " bytes: " + hexDump(frame_)};
}

RequestParser::Result RequestParser::begin(std::uint8_t byte) {
    frame_.assign(1, byte);
    if (byte != kStx)
        return refuse("byte outside a request: " + hexNumber(byte, 2));
    state_ = State::inside;
    return {};
}

RequestParser::Result RequestParser::add(std::uint8_t byte) {
    frame_.push_back(byte);
    const std::size_t position = frame_.size() - 2;
    if (position < kHeader.size()) {
        if (byte != static_cast<std::uint8_t>(kHeader[position]))
            return refuse("wrong request header: " + hexDump(frame_));
    } else if (byte == kEtx) {
        state_ = State::check;
    } else if (!isCommandCharacter(byte)) {
        return refuse("invalid character in a command: " + hexDump(frame_));
    } else if (position >= kHeader.size() + kMaxCommand) {
        return refuse("request too long: " + hexDump(frame_));
    }
    return {};
}

RequestParser::Result RequestParser::finish(std::uint8_t byte) {
    const std::uint8_t expected = blockCheck(std::span(frame_).subspan(1));
    frame_.push_back(byte);
    if (byte != expected)
        return refuse("check byte " + hexNumber(byte, 2) + " instead of " + hexNumber(expected, 2) + ": " +
                      hexDump(frame_));
    state_ = State::outside;
    const auto text = std::span(frame_).subspan(1 + kHeader.size(), frame_.size() - kHeader.size() - 3);
    return {std::string(text.begin(), text.end()), std::nullopt};
}

RequestParser::Result RequestParser::refuse(const std::string& reason) {
    state_ = State::skipping;
    return {std::nullopt, reason};
}

Bytes encode(const Reply& reply) {
    Bytes frame{kStx};
    const Bytes head = bytesOf("0000" + reply.endCode + reply.command + reply.response);
    frame.insert(frame.end(), head.begin(), head.end());
    frame.insert(frame.end(), reply.data.begin(), reply.data.end());
    frame.push_back(kEtx);
    const std::uint8_t check = blockCheck(std::span(frame).subspan(1));
    frame.push_back(check);
    return frame;
}

}  // namespace units
