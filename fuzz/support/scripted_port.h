/// A serial port without a line.
#pragma once

#include <QByteArray>

#include <deque>

/// The wire of the one port: linked in the place of the real MSComm.
struct Wire {
    std::deque<QByteArray> arriving;  ///< pieces, none empty; each look at the port finds one of them
    QByteArray written;               ///< all that has been written
};

extern Wire gWire;

/// Takes a new wire, with the port open.
void resetWire();
