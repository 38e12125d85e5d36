/// The two-language string table and the language in use.
#pragma once

#include <QString>

/// Identifiers of the table's entries, without language offset.
enum StringId : int {
#define DRAVOLT_STRING(id, name, english, japanese) name = (id),
#include "resources/string_table.def"
#undef DRAVOLT_STRING
};

/// Language selector: 0 Japanese, any other value English. Written by the settings reader and the language dialog.
extern int gLanguage;

/// Added to an identifier before its text is fetched: 0 Japanese, 10000 English.
///
/// Follows gLanguage only when the texts of a form are applied.
extern int gLangOffset;

/// The text of `id` in the language of the offset.
///
/// @throws RuntimeFailure  the table has no such entry
QString text(int id);

/// One of two texts, in the language of the offset: for what stands inside a message, such as a failure's description.
QString messageText(const char16_t* english, const char16_t* japanese);

/// One of two literal texts, chosen by the language selector itself.
QString literalText(const char16_t* english, const char16_t* japanese);
