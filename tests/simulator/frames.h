#pragma once

#include "simulator/bytes.h"
#include "simulator/wire.h"

namespace units::test {

/// A well-formed request with the command text.
inline Bytes requestFrame(std::string_view command) {
    Bytes frame = bytesOf("00000" + std::string(command) + "\x03");
    frame.push_back(blockCheck(frame));
    frame.insert(frame.begin(), kStx);
    return frame;
}

}  // namespace units::test
