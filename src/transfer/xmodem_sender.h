/// XMODEM sender: the image in gImageBuf, in 128-byte blocks, with checksum or CRC as the receiver asks.
#pragma once

#include <QString>

#include <functional>

/// Results of a send; any other number is that of a port error.
enum XmodemResult : int { kXmodemSent = 0, kXmodemRefused = 4097, kXmodemNoAnswer = 4098, kXmodemCancelled = 4099 };

/// Sends the image over the open port, from the receiver's start character to the acknowledgement of EOT.
///
/// Serves window events while it waits for bytes. Called by the write step only, after the unit has been put into its
/// download state.
/// @param acknowledged  called with the number of bytes that the receiver has acknowledged, after each packet
/// @param whatHappened  out: which block, how often, what the unit answered, when the result is not kXmodemSent
/// @return an XmodemResult, or the number of a port error, which has been shown
/// @throws RuntimeFailure  the port is gone
int fncXmodemSend(const std::function<void(int)>& acknowledged, QString& whatHappened);
