/// The texts, fonts and pictures of the four forms.
#pragma once

#include <QString>

/// Font of labels and buttons, in the language current when a form's texts were last applied.
extern QString gFontName;
/// Filter of the file dialogs: description, bar, pattern, two bars.
extern QString gFilterText;
/// Message of the start-up form for a failed first test.
extern QString gNoPortText;

/// Fixes the language offset, then applies the texts of the form that carries the object name `formName`.
///
/// The form must exist. A name other than "frmMain", "frmStartUp", "frmWait" and "frmLanguage" only sets the offset.
/// A failure is reported, and the remaining texts of that form are not applied.
void subApplyLanguage(const QString& formName);
