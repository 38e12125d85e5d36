#include "simulator/reply.h"

#include "simulator/check_values.h"
#include "simulator/control_bytes.h"

#include <span>

namespace units {

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
