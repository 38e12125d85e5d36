#include "text/error_report.h"

#include "support/boxes.h"
#include "support/program.h"
#include "text/runtime_failure.h"
#include "text/string_table.h"

class ErrorReport : public ProgramTest {
protected:
    BoxOperator user;
};

TEST_F(ErrorReport, ShowsWhatWasThrownAndLetsTheCallerGoOn) {
    EXPECT_FALSE(runTrapped([] { throw RuntimeFailure(57, "<b>COM1</b>: 100 %1"); }));
    EXPECT_FALSE(runTrapped([] { throw std::bad_alloc(); }));
    EXPECT_EQ(user.texts(), QStringList({"アプリケーションで異常が発生しました。 / RES : <b>COM1</b>: 100 %1",
                                         "アプリケーションで異常が発生しました。 / RES : std::bad_alloc"}));
}

TEST_F(ErrorReport, EndsTheProgramOnlyForTheUnexpectedErrorOfTheLanguageInUse) {
    gLangOffset = 10000;
    const QString english = text(IDS_MSGERR_UNEXPECTED);
    EXPECT_THROW(subReportError(english), ProgramEnded);
    gLangOffset = 0;
    EXPECT_NO_THROW(subReportError(english));
    EXPECT_EQ(user.boxes().size(), 2U);
}
