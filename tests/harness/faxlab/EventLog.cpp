#include "EventLog.h"

#include <cstdio>

namespace osprel::faxlab {

EventLog::EventLog(FaxEngine *engine)
    : QObject(engine), m_engine(engine), m_echo(qEnvironmentVariableIsSet("OSPREL_FAX_TRACE"))
{
    for (auto signal : {&FaxEngine::Status, &FaxEngine::NegotiatedParms, &FaxEngine::Pages, &FaxEngine::StartTime,
                        &FaxEngine::EndTime})
        connect(engine, signal, this, &EventLog::record);
    connect(engine, &FaxEngine::CompletionStatus, this, [this](const FaxEvent &e) {
        m_events.append(e);
        m_completion = e;
        ++m_completions;
    });
    connect(engine, &FaxEngine::Message, this, [this](const QString &text, bool) {
        m_messages.append(text);
        if (m_echo)
            std::fprintf(stderr, "  %s\n", qPrintable(text));
    });
}

void EventLog::record(const FaxEvent &e)
{
    if (m_engine->state() != FaxEngine::InCall && e.kind != FaxEvent::EndTimeKind)
        m_stateHeld = false;
    m_events.append(e);
}

QList<int> EventLog::kinds() const
{
    QList<int> k;
    for (const FaxEvent &e : m_events)
        k.append(e.kind);
    return k;
}

} // namespace osprel::faxlab
