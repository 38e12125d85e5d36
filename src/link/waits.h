/// How long the program waits for the units, all in one place.
#pragma once

#include <chrono>

/// The program's waits; tests may shorten them.
struct Waits {
    /// Reply to a read command, from the sending of the request to the reply's check byte.
    std::chrono::milliseconds reply{5'000};
    /// Reply to an operation command.
    std::chrono::milliseconds operationReply{10'000};
    /// For the end of an exchange that a failure has left marked as in progress.
    std::chrono::milliseconds exchangeMark{5'000};
    /// For the receiver's start character before an image is sent.
    std::chrono::milliseconds transferStart{60'000};
    /// For the answer to one packet.
    std::chrono::milliseconds packetAnswer{10'000};
    /// Between two steps of a transfer.
    std::chrono::milliseconds tick{100};
    /// Longest silence of the unit during a read.
    std::chrono::milliseconds readSilence{3'000};
    /// Between the end of a verification's read and its result.
    std::chrono::milliseconds verificationPause{2'000};
    /// For a port to take bytes that are written to it.
    std::chrono::milliseconds portWrite{5'000};
    /// Between two paintings of the progress, which take processor time from the transfer.
    std::chrono::milliseconds progressPainting{2'000};
};

inline Waits gWaits;
