// Prints the benches' figures and targets.

#include "Report.h"

#include "ProcStatus.h"

#include <QCoreApplication>
#include <csignal>
#include <cstdarg>
#include <cstdio>

void ignoreBrokenPipe()
{
    std::signal(SIGPIPE, SIG_IGN);
}

void print(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stdout, format, arguments);
    va_end(arguments);
    std::fflush(stdout);
}

void printTargetHeader()
{
    print("\n%-44s %16s   %-14s %s\n", "target", "figure", "target", "result");
}

void printTarget(const QString &name, const QString &figure, const QString &target, bool met)
{
    print("%-44s %16s   %-14s %s\n", name.toUtf8().constData(), figure.toUtf8().constData(),
          target.toUtf8().constData(), met ? "PASS" : "MISS");
}

void printLoad(const char *when)
{
    print("load average %s: %s\n", when, loadAverage().toUtf8().constData());
}

int fail(const QString &what)
{
    std::fprintf(stderr, "%s: %s\n", QCoreApplication::applicationName().toUtf8().constData(),
                 what.toUtf8().constData());
    return 1;
}
