// Counts the events delivered to the bench's connection.

#include "SignalCounter.h"

void SignalCounter::onSignal(const QDBusMessage &message)
{
    // Reading the argument is what a chamber program does with each event at the least.
    if (!message.arguments().isEmpty() && !message.arguments().constFirst().toString().isEmpty())
        ++m_count;
}
