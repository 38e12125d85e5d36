/// The common report of run-time failures.
#pragma once

#include <QString>

#include <utility>

/// Shows the failure being handled; call it from a catch block.
///
/// Ends the program when the failure's description is the text of IDS_MSGERR_UNEXPECTED; otherwise the caller goes on
/// once the operator has answered. Never throws.
void subReportError();

/// Shows `description` in the same way, for a failure that nothing has thrown.
void subReportError(const QString& description);

/// Description of the failure being handled; call it from a catch block.
QString currentFailure();

/// Runs `operation` and reports whatever it throws: the trap of every handler that the event loop calls.
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
