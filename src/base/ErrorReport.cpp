#include "ErrorReport.h"

#include "Conversions.h"

#include <cstdio>

namespace osprel {

namespace {
ErrorSink &sink()
{
    static ErrorSink s;
    return s;
}
} // namespace

void setErrorSink(ErrorSink s)
{
    sink() = std::move(s);
}

QString errorReportText(int number, const QString &description, const QString &procedure, const QString &context)
{
    return QStringLiteral("ErrorHandler ") + QString::number(number) + QStringLiteral(": ") + description +
           QStringLiteral(" (") + procedure + QStringLiteral(")") + context;
}

namespace {
QString &lastReport()
{
    static QString text;
    return text;
}
} // namespace

QString lastErrorReport()
{
    return lastReport();
}

void reportError(int number, const QString &description, const QString &procedure, const QString &context)
{
    const QString text = errorReportText(number, description, procedure, context);
    lastReport() = GetDateTimeStamp() + QStringLiteral("  ") + text;
    if (sink())
        sink()(text);
    else
        std::fprintf(stderr, "%s\n", text.toLocal8Bit().constData());
}

} // namespace osprel
