#pragma once
// The tray's picture of the send states: the caption says what is being sent, and after a delivery the icon
// flashes between the normal picture and the sent or failed one until the user looks at the window.

#include <QtGlobal>

namespace osprel {

class TrayPort;

class TrayState
{
public:
    explicit TrayState(TrayPort &port) : m_port(port) {}

    // Derives the state from the e-mail and fax send states and sets caption, icon and flashing; one flashing step
    // per call.
    void IconUpdate();
    void Flash(qint16 mode);

    qint16 shownState() const { return m_shown; }
    qint16 state() const { return m_state; }

private:
    TrayPort &m_port;
    qint16 m_shown = 0;  // the state the tray last showed
    qint16 m_state = 0;  // S: 0 idle, 1 sending, 3 sent, 4 failed
    qint16 m_toggle = 0; // which picture the next flashing step shows
};

} // namespace osprel
