#include "support/scripted_port.h"

#include "link/com_port.h"

#include <algorithm>

Wire gWire;

void resetWire() {
    static const bool open = fncPortOpen(1, {});
    gWire = Wire{};
    Q_UNUSED(open)
}

void MSComm::open(const QString& /*settings*/) { descriptor_ = 0; }

void MSComm::close() { descriptor_ = -1; }

qsizetype MSComm::inBufferCount() const { return gWire.arriving.empty() ? 0 : gWire.arriving.front().size(); }

QByteArray MSComm::input(qsizetype most) {
    if (gWire.arriving.empty())
        return {};
    QByteArray& piece = gWire.arriving.front();
    const QByteArray taken = piece.left(most);
    piece.remove(0, taken.size());
    if (piece.isEmpty())
        gWire.arriving.pop_front();
    return taken;
}

// What is still in gWire has not arrived yet.
void MSComm::discardInput() const {}

void MSComm::discardOutput() const {}

void MSComm::output(const QByteArray& bytes) { gWire.written += bytes; }

void MSComm::waitForInput(std::chrono::nanoseconds /*limit*/) const {}
