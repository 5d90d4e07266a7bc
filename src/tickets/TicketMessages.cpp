#include "TicketMessages.h"

namespace osprel {

namespace {
// The summary line's fields: 0 alert number, 1 chamber, 2 error message, 3 category, 4 alarm time.
QString withField(const QString &histData, int index, const QString &value)
{
    QStringList fields = histData.split(u'|');
    while (fields.size() <= index)
        fields.append(QString());
    fields[index] = value;
    return fields.join(u'|');
}

QString field(const QString &histData, int index)
{
    return histData.split(u'|').value(index);
}
} // namespace

void markFirstNotification(SendJob &job, const QString &code)
{
    const QString category = job.categoryName + QStringLiteral(", Ticket ") + code;
    job.message = QStringLiteral("Ticket ") + code +
                  QStringLiteral(": please acknowledge this alarm on the Active Alarms page, or with\r\n"
                                 "osprel-client --ack ") +
                  code + QStringLiteral(" --who NAME\r\n\r\n") + job.message;
    job.categoryName = category;
    job.histData = withField(job.histData, 3, field(job.histData, 3) + QStringLiteral(", Ticket ") + code);
}

SendJob repeatJob(const Ticket &t)
{
    const QString which = QStringLiteral("repeat ") + QString::number(t.repeats + 1) + QStringLiteral(" of ") +
                          QString::number(t.rule.RepeatTimes);
    SendJob job;
    job.message = QStringLiteral("# Osprel EmailFax: ticket ") + t.code + QStringLiteral(" not acknowledged, ") +
                  which + QStringLiteral(" #\r\n\r\n") + t.message;
    job.chamberName = t.chamberName;
    job.categoryName = t.category + QStringLiteral(", Ticket ") + t.code + QStringLiteral(", ") + which;
    job.histData = withField(t.histData, 3, field(t.histData, 3) + QStringLiteral(", ") + which);
    job.alertNumber = t.alertNumber;
    return job;
}

SendJob escalationJob(const Ticket &t)
{
    SendJob job;
    job.message = QStringLiteral("# Osprel EmailFax: ticket ") + t.code + QStringLiteral(" not acknowledged within ") +
                  QString::number(t.rule.EscalateMinutes) + QStringLiteral(" minutes: escalated to you #\r\n\r\n") +
                  t.message;
    job.chamberName = t.chamberName;
    job.categoryName = kEscalationMark + t.category + QStringLiteral(", Ticket ") + t.code;
    job.histData = withField(t.histData, 3, kEscalationMark + field(t.histData, 3));
    job.alertNumber = t.alertNumber;
    return job;
}

QString actionHistData(const Ticket &t, const QString &comment)
{
    return withField(t.histData, 2, comment);
}

} // namespace osprel
