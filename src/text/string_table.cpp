#include "text/string_table.h"

#include "system/runtime_failure.h"

#include <algorithm>
#include <iterator>

int gLanguage = 0;
int gLangOffset = 0;

namespace {

struct Entry {
    int id;
    const char16_t* japanese;
    const char16_t* english;
};

constexpr Entry kEntries[] = {
#define DRAVOLT_STRING(id, name, english, japanese) {id, u"" japanese, u"" english},
#include "resources/string_table.def"
#undef DRAVOLT_STRING
};

}  // namespace

QString text(int id) {
    const auto entry =
        std::find_if(std::begin(kEntries), std::end(kEntries), [id](const Entry& e) { return e.id == id; });
    if (entry == std::end(kEntries))
        throw RuntimeFailure(failure::kNoSuchText, QStringLiteral("No text with number %1").arg(id + gLangOffset));
    return QString::fromUtf16(gLangOffset == 0 ? entry->japanese : entry->english);
}

QString textByOffset(BothLanguages texts) {
    return QString::fromUtf16(gLangOffset == 0 ? texts.japanese() : texts.english());
}

QString textByLanguage(BothLanguages texts) {
    return QString::fromUtf16(gLanguage == 0 ? texts.japanese() : texts.english());
}
