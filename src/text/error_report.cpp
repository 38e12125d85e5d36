#include "text/error_report.h"

#include "system/program_end.h"
#include "system/runtime_failure.h"
#include "text/message_box.h"
#include "text/string_table.h"

void subReportError(const QString& description) {
    fncMsgBox(IDS_MSGERR_COMM_EXCEPTION, kCritical, description);
    if (description == text(IDS_MSGERR_UNEXPECTED))
        endProgram();
}

void subReportError() { subReportError(currentFailure()); }

QString currentFailure() {
    try {
        throw;
    } catch (const RuntimeFailure& f) {
        return f.description();
    } catch (const std::exception& e) {
        return QString::fromUtf8(e.what());
    }
}
