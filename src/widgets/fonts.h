/// The fonts of the program's texts.
#pragma once

class QWidget;

/// Lets every text of the program show its Japanese characters in a Japanese gothic font.
///
/// Call it once, before the first window, when the program's folder is known. Where the system has none of the usual
/// ones, the font that lies in the folder `fonts` beside the program is taken.
void useGothicFonts();

/// Sets the font name of `control` to gFontName; size and style stay.
void setCatalogueFont(QWidget& control);
