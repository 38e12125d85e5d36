#include "text/string_table.h"

#include "support/program.h"
#include "text/runtime_failure.h"

class StringTable : public ProgramTest {};

TEST_F(StringTable, EveryEntrySaysSomethingInBothLanguages) {
    const int ids[] = {
#define DRAVOLT_STRING(id, name, english, japanese) name,
#include "resources/string_table.def"
#undef DRAVOLT_STRING
    };
    for (const int id : ids)
        for (gLangOffset = 0; gLangOffset <= 10000; gLangOffset += 10000)
            EXPECT_FALSE(text(id).trimmed().isEmpty()) << id << " + " << gLangOffset;
    EXPECT_THROW(text(999), RuntimeFailure);
}

TEST_F(StringTable, TheOffsetChoosesTheEntryAndTheSelectorTheLiteralText) {
    gLanguage = 1;
    EXPECT_EQ(text(IDS_MSGERR_COMM_NG) + literalText(u"E", u"日"), "通信で異常が発生しました。E");
    gLanguage = 0;
    gLangOffset = 10000;
    EXPECT_EQ(text(IDS_MSGERR_COMM_NG) + literalText(u"E", u"日"), "Communication error.日");
}
