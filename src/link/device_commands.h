/// The commands that the units know. Every request to the units goes through one of these.
///
/// Each gives the response code, or "9999" after a run-time failure, which it has shown to the operator. None throws.
#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>

/// Target unit of operation commands and variable reads: 1 sensor amplifier, 0 interface unit.
///
/// Written by the settings reader, the identification and the main window's target choice.
extern int gUnitNo;

inline constexpr int kSensorAmplifier = 1;
inline constexpr int kInterfaceUnit = 0;

/// Status characters of the last status read; "01" is a faulty unit connection.
extern QString gUnitStatus;

/// Number of connected sensor amplifiers, from the last status read.
extern int gSensorCount;

/// First position of the data in a reply, after the echoed command code and the response code.
inline constexpr qsizetype kReplyData = 4;

/// Sends `command` unchanged; `data` receives the reply with one byte a data character.
QString fncSendTextCommand(const QString& command, QByteArray& data);

/// Sends the status read `command` and sets gUnitStatus and gSensorCount from its reply; both are empty otherwise.
QString fncReadUnitStatus(const QString& command, QByteArray& data);

/// Reads `count` elements of variable area `type` (two characters) from `address`; the low 16 bits of both numbers go
/// out. `data` receives the reply, most significant byte of a value first.
QString fncReadVariable(const QString& type, int address, int count, QByteArray& data,
                        std::chrono::milliseconds timeout, bool silent);

/// Sends operation command `code`, one of kPrepareWrite to kEndTransfer, with the low 8 bits of `related`.
QString fncOperationCommand(const QString& code, int related);

/// Reads the sensor amplifier's type once: the check before a write.
/// @return 0 when it answers normally; else its response code as a decimal number, or 8 when that is not a number
int fncCheckSensorComm();
