#pragma once
// The main window's named timers with their design intervals (scaled by the process's time scale).

#include <QTimer>

namespace osprel {

class FormTimers
{
public:
    FormTimers();

    QTimer TimerInit;        // 5000 ms, once: starts the two dispatch timers after start-up
    QTimer TimerMsgQue;      // 1000 ms: takes one alert from the incoming queue
    QTimer TimerDBAlarms;    // 1000 ms: asks whether a summary report is due
    QTimer tmrServer;        // 750 ms: ends the program once no chamber program is linked
    QTimer TimerEmailMsgQue; // starts the next e-mail
    QTimer TimerFaxMsgQue;   // 5000 ms: starts the next fax
    // TimerTCPConnect belongs to the SMTP client, which owns the socket it shows.
};

} // namespace osprel
