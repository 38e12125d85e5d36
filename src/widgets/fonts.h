/// The fonts of the program's texts.
#pragma once

class QWidget;

/// Makes the program show Japanese characters in a Japanese gothic font.
///
/// Call once, before the first window, after setting the program's folder. Where the system has none of the usual
/// fonts, uses the one in the folder `fonts` beside the program.
void useGothicFonts();

/// Sets the font name of `control` to gFontName; keeps size and style.
void setCatalogueFont(QWidget& control);
