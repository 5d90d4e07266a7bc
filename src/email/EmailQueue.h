#pragma once
// The e-mail send queue: each tick takes the head job when the e-mail path is idle, hands it to SendEmail and
// records the attempt at the top of the e-mail history; the outcome is recorded by the delivery code. Also the
// test e-mail and the switch that turns e-mail messaging on and off.

#include <QObject>

namespace osprel {

class Database;
class EmailQueuePort;
class FormLists;
class FormTimers;
class Notices;
class RecipientsPagePort;
class SmtpClient;

class EmailQueue : public QObject
{
    Q_OBJECT
public:
    EmailQueue(FormLists &lists, FormTimers &timers, const Database &database, SmtpClient &smtp, EmailQueuePort &port,
               RecipientsPagePort &recipientsPage, Notices &notices, QObject *parent = nullptr);

    void TimerEmailMsgQue_Timer();
    void cmdTestEmail_Click();
    void chkEnableEmail_Click();

Q_SIGNALS:
    // The head job was handed to the SMTP client (or the system mail program): it is being sent.
    void sendingStarted();

private:
    FormLists &m_lists;
    FormTimers &m_timers;
    const Database &m_database;
    SmtpClient &m_smtp;
    EmailQueuePort &m_port;
    RecipientsPagePort &m_recipientsPage;
    Notices &m_notices;
};

} // namespace osprel
