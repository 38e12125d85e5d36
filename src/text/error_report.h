/// Reports run-time failures to the operator.
#pragma once

#include <QString>

#include <utility>

/// Shows the failure being handled; call it from a catch block.
///
/// Ends the program if the failure's description is the text of IDS_MSGERR_UNEXPECTED; otherwise returns when the
/// operator has answered. Never throws.
void subReportError();

/// Reports `description` in the same way, for a failure that was not thrown.
void subReportError(const QString& description);

/// Description of the failure being handled; call it from a catch block.
QString currentFailure();

/// Runs `operation` and reports whatever it throws. Every handler that the event loop calls goes through it.
///
/// @return whether `operation` ran to its end
template <typename Operation>
bool runTrapped(Operation&& operation) {
    try {
        std::forward<Operation>(operation)();
        return true;
    } catch (...) {
        subReportError();
        return false;
    }
}
