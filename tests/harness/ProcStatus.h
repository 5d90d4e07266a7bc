#pragma once
// What a bench reads from /proc: whether another process still runs, its resident memory, and the machine's load.

#include <QString>
#include <QtGlobal>
#include <sys/types.h>

// True while the process exists and is not a zombie waiting to be reaped.
bool processRunning(pid_t pid);
// VmRSS in KiB, or -1 when it cannot be read.
qint64 residentKiB(pid_t pid);
// The CPU time the process has used so far, user and system, in milliseconds (to the kernel's clock tick), or -1.
qint64 cpuTimeMs(pid_t pid);
// The load averages over 1, 5 and 15 minutes as /proc/loadavg gives them ("0.52 0.61 0.70"), or "?".
QString loadAverage();
