#pragma once
// How every bench prints: figures as they come, one line per target with PASS or MISS, the machine's load beside
// them, and the reason when the bench itself could not run.

#include <QString>

// Output into a closed pipe (a bench piped into head) must not end the bench before it has ended what it started.
void ignoreBrokenPipe();
void print(const char *format, ...) __attribute__((format(printf, 1, 2)));
// One line of the target table: what is measured, the figure, the target and whether it was met.
void printTarget(const QString &name, const QString &figure, const QString &target, bool met);
// The head of the target table.
void printTargetHeader();
// "load average: 1-min 5-min 15-min", with what the bench is doing at that moment.
void printLoad(const char *when);
// Writes "<program>: <what>" to stderr and returns the exit code for a bench that could not run.
int fail(const QString &what);
