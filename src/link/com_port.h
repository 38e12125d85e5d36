/// Opening and closing the COM port of the program.
#pragma once

#include "link/ms_comm.h"

/// The program's serial port while fncPortOpen() has bound it, else null; shared with the line of a transfer.
extern MSComm* gobjComm;

/// The bound port.
/// @throws RuntimeFailure  no port is bound
MSComm& boundPort();

/// Opens port `port` with the line `settings` ("38400,n,8,1").
///
/// A failure is shown to the operator, its cause is said on standard error. Called by the start-up form only.
/// @return whether the port is open and ready
bool fncPortOpen(int port, const QString& settings);

/// Closes the port if it is open, and releases it. Never fails.
void subPortClose();
