/// What the texts of all forms have in common. The texts of a form stand with the form.
#pragma once

#include "text/string_table.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <span>

/// Font of labels and buttons, in the language current when a form's texts were last applied; as the two below.
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

/// One control of a form, its text, and whether it takes the catalogue's font.
struct ControlText {
    const char* control;
    StringId id;
    bool catalogueFont;
};

/// Fixes the language offset, the three texts above and the language of Qt's own texts, then runs `setTexts`, which
/// applies the texts of one form.
///
/// A failure is reported, and the remaining texts of that form are not applied.
void subApplyLanguage(const std::function<void()>& setTexts);

/// Sets the texts and fonts of the controls of `form` that carry the names in `texts`.
/// @throws RuntimeFailure  there is no such control
void applyControlTexts(const QWidget& form, std::span<const ControlText> texts);
