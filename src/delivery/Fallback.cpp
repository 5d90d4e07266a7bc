#include "Fallback.h"

#include "ErrorReport.h"
#include "FormLists.h"
#include "Log.h"
#include "QueueRoutines.h"
#include "SendSwitches.h"
#include "Values.h"

namespace osprel {

namespace {
const QString kMark = QStringLiteral("Fallback: ");

// The switches as queueSendJobs reads them, with one channel kept and the other off.
class OneChannel : public SendSwitches
{
public:
    OneChannel(const SendSwitches &switches, bool email) : m_switches(switches), m_email(email) {}
    bool chkEnableEmail() const override { return m_email && m_switches.chkEnableEmail(); }
    bool chkEnableFax() const override { return !m_email && m_switches.chkEnableFax(); }

private:
    const SendSwitches &m_switches;
    bool m_email;
};

QString column(const QStringList &row, int column)
{
    return column <= row.size() ? row.at(column - 1) : QString();
}

// The summary line with its category field (the fourth) marked, so the history row says it is a fallback.
QString markedSummary(const QString &histData)
{
    QStringList fields = histData.split(u'|');
    if (fields.size() > 3)
        fields[3] = kMark + fields[3];
    return fields.join(u'|');
}
} // namespace

Fallback::Fallback(FormLists &lists, FormTimers &timers, const SendSwitches &switches)
    : m_lists(lists), m_timers(timers), m_switches(switches)
{
}

void Fallback::emailFailedForGood(const QStringList &row)
{
    // E-mail queue: 2 message, 3 chamber, 4 recipients, 6 category, 7 summary, 8 alert number.
    guarded(QStringLiteral("Fallback"), [&] {
        send(ByFax, column(row, 2), column(row, 3), column(row, 6), column(row, 7), column(row, 8),
             QStringLiteral("e-mail to ") + column(row, 4));
    });
}

void Fallback::faxFailedForGood(const QStringList &row)
{
    // Fax queue: 2 message, 3 chamber, 4 number, 6 category, 7 summary, 10 alert number.
    guarded(QStringLiteral("Fallback"), [&] {
        send(ByEmail, column(row, 2), column(row, 3), column(row, 6), column(row, 7), column(row, 10),
             QStringLiteral("fax to ") + column(row, 4));
    });
}

void Fallback::send(Channel channel, const QString &message, const QString &chamber, const QString &category,
                    const QString &histData, const QString &alertNumber, const QString &failed)
{
    if (category.startsWith(kMark))
        return; // a fallback is not sent back
    const QString key = QString::number(channel) + u'\n' + histData + u'\n' + message;
    if (m_done.contains(key))
        return;
    const bool email = channel == ByEmail;
    const bool open = email ? m_switches.chkEnableEmail() && !m_lists.lvwEmailContacts.isEmpty()
                            : m_switches.chkEnableFax() && !m_lists.lvwFaxContacts.isEmpty();
    if (!open) {
        DumpStr(kMark + failed + QStringLiteral(" failed for good; ") +
                (email ? QStringLiteral("e-mail") : QStringLiteral("fax")) +
                QStringLiteral(" is not on or has no recipients, so it goes no further."));
        return;
    }
    if (m_done.size() >= 500)
        m_done.clear();
    m_done.insert(key);
    DumpStr(kMark + failed + QStringLiteral(" failed for good; sending it by ") +
            (email ? QStringLiteral("e-mail.") : QStringLiteral("fax.")));
    queueSendJobs(m_lists, m_timers, OneChannel(m_switches, email),
                  {message, chamber, kMark + category, markedSummary(histData), alertNumber});
}

} // namespace osprel
