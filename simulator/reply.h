#pragma once

#include "simulator/bytes.h"

#include <string>

namespace units {

/// The content of a reply frame.
struct Reply {
    std::string endCode = "00";     ///< 2 characters: "00" normal, "0F" command error, others failure of the frame
    std::string command;            ///< 4 characters, echoed from the request
    std::string response = "0000";  ///< 4 characters
    Bytes data{};
};

/// STX, node, sub-address, end code, command, response, data, ETX, check byte.
Bytes encode(const Reply& reply);

}  // namespace units
