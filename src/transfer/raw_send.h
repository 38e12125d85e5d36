/// Bytes that go to the unit without a frame around them.
#pragma once

#include <QByteArray>

/// Clears the port's receive buffer, then sends `bytes` in one write.
///
/// Never throws: a port error is shown.
/// @return 7 (kResultSuccess), or the number of the port error
int fncSendRaw(const QByteArray& bytes);
