#pragma once
// The other channel when one fails for good. A notification whose e-mail failed its last attempt goes once by fax
// to the fax list (when fax is on and has recipients), and a notification whose fax failed goes once by e-mail.
// The copy is marked "Fallback: " in its category, so the subject and the history say what it is, and so that a
// fallback that fails in its turn is not sent back again.

#include <QSet>
#include <QString>
#include <QStringList>

namespace osprel {

class FormLists;
class FormTimers;
class SendSwitches;

class Fallback
{
public:
    Fallback(FormLists &lists, FormTimers &timers, const SendSwitches &switches);

    // row: the e-mail queue's row of the message that failed for good.
    void emailFailedForGood(const QStringList &row);
    // row: the fax queue's row (one recipient's job) that failed for good.
    void faxFailedForGood(const QStringList &row);

private:
    enum Channel { ByEmail, ByFax };
    void send(Channel channel, const QString &message, const QString &chamber, const QString &category,
              const QString &histData, const QString &alertNumber, const QString &failed);

    FormLists &m_lists;
    FormTimers &m_timers;
    const SendSwitches &m_switches;
    QSet<QString> m_done; // notifications already sent on their other channel (a fax fails once per number)
};

} // namespace osprel
