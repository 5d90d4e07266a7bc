#pragma once
// Records what a FaxEngine reports during a test: every event, the last completion, and whether the engine's state
// stayed "in a call" while the call was on.

#include "FaxEngine.h"

#include <QList>
#include <QStringList>

namespace osprel::faxlab {

class EventLog : public QObject
{
    Q_OBJECT
public:
    // With OSPREL_FAX_TRACE set, the modem dialogue is echoed to stderr.
    explicit EventLog(FaxEngine *engine);

    bool completed() const { return m_completions > 0; }
    int completions() const { return m_completions; }
    const FaxEvent &completion() const { return m_completion; }
    const QList<FaxEvent> &events() const { return m_events; }
    QList<int> kinds() const;
    const QStringList &messages() const { return m_messages; }
    // False if any event before the completion saw the engine in a state other than 2 (in a call).
    bool stateHeldDuringCall() const { return m_stateHeld; }
    QString dialogue() const { return m_messages.join(QLatin1Char('\n')); }

private:
    void record(const FaxEvent &e);

    FaxEngine *m_engine;
    bool m_echo;
    int m_completions = 0;
    bool m_stateHeld = true;
    FaxEvent m_completion;
    QList<FaxEvent> m_events;
    QStringList m_messages;
};

} // namespace osprel::faxlab
