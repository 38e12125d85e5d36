/// Command frames: parses requests, builds replies.
#pragma once

#include "simulator/bytes.h"

#include <cstddef>
#include <optional>
#include <string>

namespace units {

/// Parses request frames: STX, node "00", sub-address "00", service "0", command text, ETX, check byte. Takes one
/// byte at a time; after a format error it looks for the next STX.
class RequestParser {
public:
    static constexpr std::size_t kMaxCommand = 32;

    /// What a byte completed. At most one of the two is set.
    struct Result {
        std::optional<std::string> command;    ///< text of a well-formed frame
        std::optional<std::string> violation;  ///< what was wrong with the frame
    };

    Result take(std::uint8_t byte);

    /// The line has been silent for too long. Reports an incomplete frame.
    Result silence();

    /// Whether a frame has begun but is not complete.
    bool inFrame() const { return state_ == State::inside || state_ == State::check; }

    /// Whether silence() would change anything.
    bool waits() const { return state_ != State::outside; }

    /// The bytes of the last frame, complete or not.
    const Bytes& frame() const { return frame_; }

private:
    enum class State { outside, inside, check, skipping };

    Result begin(std::uint8_t byte);
    Result add(std::uint8_t byte);
    Result finish(std::uint8_t byte);
    Result refuse(const std::string& reason);

    State state_ = State::outside;
    Bytes frame_;
};

/// The content of a reply frame.
struct Reply {
    std::string endCode = "00";     ///< 2 characters: "00" normal, "0F" command error, others frame errors
    std::string command;            ///< 4 characters, echoed from the request
    std::string response = "0000";  ///< 4 characters
    Bytes data{};
};

/// STX, node, sub-address, end code, command, response, data, ETX, check byte.
Bytes encode(const Reply& reply);

}  // namespace units
