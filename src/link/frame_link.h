/// Frame link: one request, one reply, over the open port.
///
/// Only the device commands call it. One exchange runs at a time; the windows are not served meanwhile.
#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>

/// Set while an exchange runs, and left set by an exchange that a failure has ended.
extern bool gblnCommBusy;

/// Attempt number of the current transfer command: 0 normally, 2 and 3 during retries. The transfer sequence writes it.
extern int gintCommRetry;

/// Sends `command` in a frame and collects the reply.
///
/// First waits for an exchange that a failure has left marked as in progress, for at most gWaits.exchangeMark, and
/// serves window events meanwhile.
/// @param command  command text, ASCII; sent in upper case
/// @param raw      true: each data character of the reply is one byte; false: two hexadecimal digits are one byte
/// @param data     out: the received bytes, whatever the result (451 zero bytes if nothing came)
/// @param timeout  for the whole exchange, from sending to check byte
/// @param silent   true: no box for the response code "1234" at the third attempt
/// @return four hexadecimal digits from the unit, or the link's own codes: "" unusable, "9999" no reply,
///         "90" + end code
/// @throws RuntimeFailure  the port fails or is not open; the reply has no hexadecimal pair where one is due, is too
///                         long, or carries no response code; the log cannot be written
QString fncSendCommand(const QString& command, bool raw, QByteArray& data, std::chrono::milliseconds timeout,
                       bool silent);
