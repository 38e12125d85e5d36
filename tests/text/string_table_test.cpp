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
        for (const int offset : {0, 10000}) {
            gLangOffset = offset;
            EXPECT_FALSE(text(id).trimmed().isEmpty()) << id << " + " << offset;
        }
}

TEST_F(StringTable, TheOffsetChoosesNotTheSelector) {
    gLanguage = 1;
    EXPECT_EQ(text(IDS_MSGERR_COMM_NG), QStringLiteral("通信で異常が発生しました。"));
    gLangOffset = 10000;
    EXPECT_EQ(text(IDS_MSGERR_COMM_NG), QStringLiteral("Communication error."));
}

TEST_F(StringTable, LiteralTextsFollowTheSelectorAndAnyValueButZeroIsEnglish) {
    for (const auto& [language, expected] : {std::pair{0, u"日"}, {1, u"E"}, {2, u"E"}}) {
        gLanguage = language;
        EXPECT_EQ(literalText(u"E", u"日"), QString::fromUtf16(expected));
    }
}

TEST_F(StringTable, AnUnknownNumberIsAFailure) { EXPECT_THROW(text(999), RuntimeFailure); }
