/// The communication log "PelkLog.txt" beside the program: one line for each unusable reply.
#pragma once

#include <QString>

/// Appends the local time (`yyyy/MM/dd HH:mm:ss`), one space and `line`, ended by CR LF.
///
/// The file is opened and closed for each record. Called by the frame link only.
/// @throws RuntimeFailure  the file cannot be opened or written, or is not a regular file
void subWriteCommLog(const QString& line);
