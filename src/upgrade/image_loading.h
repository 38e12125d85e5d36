/// The loaded image: what the image loading has found in it. Written by the main window only.
#pragma once

#include <QString>

/// Whether the last load read the file completely.
extern bool gFileLoaded;
/// Path of the image file chosen last; preset in the next file dialog.
extern QString gLoadFileName;
/// Display name of the loaded image; empty while no table entry fits.
extern QString gFileTypeName;
/// Version text of the loaded image.
extern QString gFileVersion;

/// Sets gFileTypeName and gFileVersion from the information block in gImageBuf and the type tables; an interface unit's
/// entry wins over an amplifier's.
/// @throws RuntimeFailure  the amplifier's entry has no type name, or a base number that is too large
void takeImageInfo();
