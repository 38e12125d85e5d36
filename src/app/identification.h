/// Identification of the connected units.
#pragma once

#include <QString>

/// Type name of the connected sensor amplifier.
extern QString gAmpTypeName;
/// Its firmware version, such as 1.234; the main window replaces it after a write.
extern QString gAmpVersion;
/// Type text of the interface unit.
extern QString gIfuTypeName;
/// Its firmware version, up to 6 characters; the main window replaces it after a write.
extern QString gIfuVersion;

/// Identifies interface unit and sensor amplifier over the open port and fills the four texts above and gUnitNo.
///
/// Ends the program, with a message, if it cannot work with the connected units. A run-time failure is reported and
/// stops the identification. Called by the start-up form only.
void subGetUnitInfo();

/// Model name in the data of an attribute reply: its first 16 characters, without blanks at the ends. Pure.
QString attributeModel(const QString& attributes);

/// Version in the data of an attribute reply: up to 6 characters after the first "V" at or after character 16. Pure.
QString attributeVersion(const QString& attributes);
