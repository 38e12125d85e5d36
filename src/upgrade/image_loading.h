/// What is known of the loaded image. Written by the main window only.
#pragma once

#include <QString>

/// Whether the last load read the whole file.
extern bool gFileLoaded;
/// Path of the last image file chosen; preset in the next file dialog.
extern QString gLoadFileName;
/// Display name of the loaded image; empty while no table entry fits.
extern QString gFileTypeName;
/// Version text of the loaded image.
extern QString gFileVersion;

/// Sets gFileTypeName and gFileVersion from the information block in gImageBuf and the type tables, where an interface
/// unit's entry takes precedence over an amplifier's.
/// @throws RuntimeFailure  the amplifier's entry has no type name, or a base number that is too large
void takeImageInfo();
