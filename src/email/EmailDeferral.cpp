#include "EmailDeferral.h"

#include "ListStore.h"
#include "MessageFormat.h"

namespace osprel {

namespace {
QDateTime stored(const QString &text)
{
    return QDateTime::fromString(text, Qt::ISODate);
}
} // namespace

int deferralMinutes(int n)
{
    static constexpr int schedule[] = {1, 5, 15, 30};
    return n >= 1 && n <= 4 ? schedule[n - 1] : 60;
}

bool bringDueJobToTop(ListStore &queue, const QDateTime &now)
{
    for (int row = 1; row <= queue.count(); ++row) {
        const QDateTime next = stored(queue.text(row, EmailJobColumn::NextTry));
        if (next.isValid() && next > now)
            continue;
        if (row > 1) {
            const QStringList job = queue.row(row);
            queue.remove(row);
            queue.insert(1, job);
        }
        return true;
    }
    return false;
}

bool deferTopJob(ListStore &queue, const QString &reason, int killTimeMinutes, const QDateTime &now, QString *status)
{
    QDateTime first = stored(queue.text(1, EmailJobColumn::FirstDeferred));
    if (!first.isValid()) {
        first = now;
        queue.setText(1, EmailJobColumn::FirstDeferred, now.toString(Qt::ISODate));
    }
    if (now >= first.addSecs(qint64(killTimeMinutes) * 60))
        return false;
    const int n = queue.text(1, EmailJobColumn::Deferrals).toInt() + 1;
    const QDateTime next = now.addSecs(qint64(deferralMinutes(n)) * 60);
    *status = QStringLiteral("Deferred %1, next try %2 (%3)")
                  .arg(n)
                  .arg(next.toString(QStringLiteral("HH:mm")), MessageFormat::oneLine(reason));
    queue.setText(1, EmailJobColumn::Deferrals, QString::number(n));
    queue.setText(1, EmailJobColumn::NextTry, next.toString(Qt::ISODate));
    queue.setText(1, EmailJobColumn::Status, *status);
    return true;
}

} // namespace osprel
