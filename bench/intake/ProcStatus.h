#pragma once
// What the bench reads about another process from /proc: whether it still runs, and its resident memory.

#include <QtGlobal>
#include <sys/types.h>

// True while the process exists and is not a zombie waiting to be reaped.
bool processRunning(pid_t pid);
// VmRSS in KiB, or -1 when it cannot be read.
qint64 residentKiB(pid_t pid);
