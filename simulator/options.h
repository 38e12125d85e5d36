/// Options of the simulation.
#pragma once

#include "simulator/bytes.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace units {

/// Time since the simulator started, or a duration.
using Time = std::chrono::nanoseconds;

/// The two units behind the port; the values are their numbers in operation commands.
enum class Unit : std::uint8_t { interface = 0, amplifier = 1 };

/// The check that a unit asks for in the packets of a download.
enum class CheckMode { sum, crc };

/// Terminal settings of the port before the client opens it: raw; those of a new pseudo-terminal (canonical, echo);
/// or canonical with echo, flow control, two stop bits and another speed.
enum class LineState { raw, fresh, hostile };

/// Time-outs and retries of the units. Tests shorten them.
struct Timing {
    Time startInterval = std::chrono::seconds(3);     ///< between start characters of a download
    unsigned startTries = 20;                         ///< start characters before a download is abandoned
    Time byteGap = std::chrono::seconds(1);           ///< longest silence inside a frame or packet
    Time packetWait = std::chrono::seconds(10);       ///< longest silence between packets before a NAK
    unsigned packetTries = 10;                        ///< silences in a row before a download is abandoned
    Time uploadStartWait = std::chrono::seconds(60);  ///< longest wait for the NAK that starts an upload
    Time answerWait = std::chrono::seconds(10);       ///< longest wait for the answer to a block of an upload
    unsigned blockTries = 10;                         ///< repeats of a block of an upload
};

/// By default a faultless pair of units on an unlimited line.
struct Options {
    std::string model = "SV-IFU16";  ///< model name of the interface unit, up to 16 characters
    std::uint8_t kind = 0x0A;        ///< kind of the amplifier
    std::string status = "00";       ///< two status characters
    unsigned sensors = 1;            ///< connected amplifiers, 0..99

    Bytes amplifierFirmware;    ///< initial image; empty: a sample
    Bytes interfaceFirmware;    ///< likewise
    std::string saveAmplifier;  ///< file kept equal to the amplifier's firmware; empty: none
    std::string saveInterface;  ///< likewise
    CheckMode amplifierCheck = CheckMode::crc;
    CheckMode interfaceCheck = CheckMode::sum;
    unsigned uploadBlocks = 1920;  ///< blocks sent by an upload, 1..1920

    unsigned rate = 0;                           ///< bit/s, ten bits per byte; 0: unlimited
    std::chrono::milliseconds answerLatency{0};  ///< delay of every answer
    LineState lineState = LineState::raw;
    unsigned expectSpeed = 0;  ///< the client must have set this speed, 8N1, no echo; 0: not checked
    std::string link;          ///< symbolic link to the port; replaces only another link; empty: none

    std::vector<std::string> faults;  ///< KIND[:VALUE]@PLACE[#K][*TIMES], see faultHelp()
    std::string journal;              ///< file of the journal; empty: none
    bool violationsToStderr = false;

    std::string receiver;      ///< shell command that takes a download in place of the unit; empty: the unit
    std::string sender;        ///< shell command that sends an upload in place of the unit; empty: the unit
    bool receiveOnly = false;  ///< one download to the amplifier from the start, no commands

    Timing timing;
};

}  // namespace units
