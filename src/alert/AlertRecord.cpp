#include "AlertRecord.h"

#include "Conversions.h"
#include "RunError.h"
#include "Values.h"

namespace osprel {

QString AlertSummary::line() const
{
    return alertNumber + u'|' + chamberName + u'|' + errorMessage + u'|' + categoryName + u'|' + alarmTime;
}

QStringList splitAlertValues(const QString &alertText)
{
    QStringList values;
    values.reserve(kAlertValueCount);
    auto append = [&values](const QString &value) {
        if (values.size() == kAlertValueCount)
            raise(Err::SubscriptOutOfRange);
        values.append(Trim(value));
    };
    for (const QString &group : Split(alertText, QStringLiteral("|"))) {
        if (group.contains(u';')) {
            for (const QString &value : Split(group, QStringLiteral(";")))
                append(value);
        } else {
            append(group);
        }
    }
    while (values.size() < kAlertValueCount)
        values.append(QString());
    return values;
}

QString categoryNameOf(const QString &categoryValue)
{
    return GetCatName(CInt(Val(categoryValue)));
}

AlertSummary summaryOf(const QStringList &values)
{
    AlertSummary summary;
    summary.alertNumber = element(values, 0);
    summary.chamberName = element(values, 2);
    summary.errorMessage = element(values, 10);
    summary.categoryName = categoryNameOf(element(values, 19));
    summary.alarmTime = element(values, 20);
    return summary;
}

} // namespace osprel
