/// The type tables of `TYPE.INI`: turn what units and images report into type names and versions.
///
/// The file is read again at every lookup.
#pragma once

#include <QString>

#include <cstdint>

/// Path of `TYPE.INI` beside the program.
QString typeTableFile();

/// Looks `number` up in the ranges of the "AMP_TYPE" entry `kindKey`.
///
/// @param name    out: name of the range, empty if none fits; unchanged if there is no entry, or on failure
/// @param offset  out: version in thousandths, 0 to 9999; 0 if none fits; unchanged likewise
/// @return whether a range fits
/// @throws RuntimeFailure  the entry has no second item, or a base number is too large
bool fncGetAmpType(const QString& kindKey, std::int32_t number, QString& name, std::int32_t& offset);

/// The "IFU_DEFINE" text to which `key` of `section` ("IFU_TYPE" or "IFU_BIN_TYPE") refers, or empty text.
QString fncGetIfuDefine(const QString& key, const QString& section);
