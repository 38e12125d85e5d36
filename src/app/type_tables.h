/// The type tables of `TYPE.INI`: what units and images report, turned into type names and versions.
///
/// The file is read afresh at every lookup.
#pragma once

#include <QString>

#include <cstdint>

/// Path of `TYPE.INI` beside the program.
QString typeTableFile();

/// Looks `number` up in the ranges of the "AMP_TYPE" entry `kindKey`.
///
/// @param name    out: name of the range, empty when none fits; unchanged when there is no entry, and by a failure
/// @param offset  out: version in thousandths, 0 to 9999; 0 when none fits; unchanged likewise
/// @return whether a range fits
/// @throws RuntimeFailure  the entry has no second item, or a base number is too large
bool fncGetAmpType(const QString& kindKey, std::int32_t number, QString& name, std::int32_t& offset);

/// The "IFU_DEFINE" text that `key` of `section` ("IFU_TYPE" or "IFU_BIN_TYPE") leads to, or empty text.
QString fncGetIfuDefine(const QString& key, const QString& section);
