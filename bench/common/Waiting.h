#pragma once
// Waiting with the event loop running, always bounded in time.

#include <functional>

// Runs the event loop for ms milliseconds.
void pump(int ms);
// Runs the event loop until done() holds or timeoutMs passed; returns done() at the end.
bool waitFor(const std::function<bool()> &done, int timeoutMs, int stepMs = 1);
