/// What the texts of all forms share. The texts of a form are in the form's own source.
#pragma once

#include "text/string_table.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <span>

/// Font of labels and buttons; like the two below, in the language in which a form's texts were last applied.
extern QString gFontName;
/// Filter of the file dialogs: description, bar, pattern, two bars.
extern QString gFilterText;
/// Message of the start-up form for a failed first test.
extern QString gNoPortText;

/// A new control of `form`, named `name`.
template <typename Control>
Control* addControl(QWidget& form, const QString& name) {
    auto* control = new Control(&form);
    control->setObjectName(name);
    return control;
}

/// One control of a form, its text, and whether it uses the catalogue's font.
struct ControlText {
    const char* control;
    StringId id;
    bool catalogueFont;
};

/// Sets the language offset, the three texts above and the language of Qt's own texts, then calls `setTexts` to apply
/// the texts of one form.
///
/// A failure is reported, and the form's remaining texts are not applied.
void subApplyLanguage(const std::function<void()>& setTexts);

/// Sets the texts and fonts of the controls of `form` named in `texts`.
/// @throws RuntimeFailure  there is no such control
void applyControlTexts(const QWidget& form, std::span<const ControlText> texts);
