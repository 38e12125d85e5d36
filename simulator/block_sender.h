/// Sends a firmware image by XMODEM with 8-bit checksums. The client starts it with NAK, acknowledges every block, and
/// answers the first EOT with NAK and the second with ACK.
#pragma once

#include "simulator/bytes.h"
#include "simulator/fault_book.h"
#include "simulator/journal.h"
#include "simulator/options.h"
#include "simulator/script.h"
#include "simulator/xmodem_unit.h"

#include <string>

namespace units {

class BlockSender final : public XmodemUnit {
public:
    /// Sends the first `blocks` blocks of the image, 1..1920. `unsure`: because of a fault the client may not
    /// know that the upload has started.
    BlockSender(Bytes image, unsigned blocks, bool unsure, FaultBook& faults, Journal& journal, const Timing& timing);

    Script begin(Time now) override;
    Script take(std::uint8_t byte, Time now) override;
    void sent(Time now) override;
    Script timeout(Time now) override;

private:
    enum class State { starting, sending, ending };

    Script accepted(Time now);
    Script refused(Time now);
    Script next(Time now);
    Script repeat(const char* reason, Time now);
    Script sendBlock(Time now);
    Script sendEot(Time now);
    Bytes encodeBlock(const ActiveFaults& faults) const;
    Script send(Bytes bytes, const std::string& meaning, const ActiveFaults& faults, Time now);

    Bytes image_;
    unsigned blocks_;

    State state_ = State::starting;
    unsigned block_ = 0;       ///< number of the current block, from 1
    unsigned repeats_ = 0;     ///< of the current block or EOT
    unsigned eots_ = 0;        ///< EOTs sent
    unsigned eotAnswers_ = 0;  ///< answers to them
    bool astray_ = false;      ///< incoming bytes are known not to be answers
};

}  // namespace units
