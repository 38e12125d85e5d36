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
/// Set from gLanguage when the texts of a form are applied.
extern int gLangOffset;

/// The text of `id` in the language of the offset.
///
/// @throws RuntimeFailure  the table has no such entry
QString text(int id);

/// A text outside the table, in both languages. A missing language, or an insert (%1 to %9) in one language only, does
/// not compile.
class BothLanguages {
public:
    consteval BothLanguages(const char16_t* english, const char16_t* japanese)
        : english_(english), japanese_(japanese) {
        if (inserts(english) < 0 || inserts(english) != inserts(japanese))
            throw "a text must say the same in both languages";
    }
    const char16_t* english() const { return english_; }
    const char16_t* japanese() const { return japanese_; }

private:
    /// One bit for each insert in `text`; -1 if there is no text.
    static consteval int inserts(const char16_t* text) {
        int found = *text == u'\0' ? -1 : 0;
        for (; *text != u'\0'; ++text)
            if (*text == u'%' && text[1] >= u'1' && text[1] <= u'9')
                found |= 1 << (text[1] - u'0');
        return found;
    }

    const char16_t* english_;
    const char16_t* japanese_;
};

/// `texts` in the language of gLangOffset, for use inside a message, such as a failure's description.
QString textByOffset(BothLanguages texts);

/// `texts` in the language of gLanguage, which may be ahead of the offset.
QString textByLanguage(BothLanguages texts);
