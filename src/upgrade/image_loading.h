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
