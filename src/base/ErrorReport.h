#pragma once
// The error-report convention: a procedure runs its body once; a run-time error is logged as
// "ErrorHandler N: description (Procedure)" and the procedure leaves with its default result.

#include "RunError.h"

#include <QString>
#include <functional>
#include <new>

namespace osprel {

// Where error reports go; the log installs itself here at start-up. Without a sink, reports go to stderr.
using ErrorSink = std::function<void(const QString &)>;
void setErrorSink(ErrorSink sink);

// Builds "ErrorHandler N: description (procedure)" + context, as the log shows it.
QString errorReportText(int number, const QString &description, const QString &procedure,
                        const QString &context = QString());
void reportError(int number, const QString &description, const QString &procedure, const QString &context = QString());
// The last report with its date and time, for the daily status; empty when there was none.
QString lastErrorReport();

// Runs body; on a run-time error reports it under procedure (plus context) and returns false.
// Nothing thrown ever leaves a guarded procedure.
template <typename Body> bool guarded(const QString &procedure, const QString &context, Body &&body) noexcept
{
    try {
        body();
        return true;
    } catch (const RunError &e) {
        reportError(e.number(), e.description(), procedure, context);
    } catch (const std::bad_alloc &) {
        reportError(Err::OutOfMemory, errorDescription(Err::OutOfMemory), procedure, context);
    } catch (const std::exception &e) {
        reportError(Err::InternalError, QString::fromUtf8(e.what()), procedure, context);
    } catch (...) {
        reportError(Err::InternalError, errorDescription(Err::InternalError), procedure, context);
    }
    return false;
}

template <typename Body> bool guarded(const QString &procedure, Body &&body) noexcept
{
    return guarded(procedure, QString(), std::forward<Body>(body));
}

} // namespace osprel
