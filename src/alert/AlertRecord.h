#pragma once
// The alert text a chamber program hands in: seven "|"-separated groups of ";"-separated values, 21 values in all,
// and the five-string summary that the queues and the history carry.

#include <QString>
#include <QStringList>

namespace osprel {

constexpr int kAlertValueCount = 21;

struct AlertSummary
{
    QString alertNumber;  // value 0
    QString chamberName;  // value 2
    QString errorMessage; // value 10
    QString categoryName; // value 19 as a category name
    QString alarmTime;    // value 20

    // The five strings joined by "|": the history text of every send job.
    QString line() const;
};

// Splits an alert into its 21 values, each trimmed. A group holding ";" gives one value per piece (so a trailing
// ";" gives an extra empty value); a 22nd value raises Subscript out of range. Missing values are empty.
QStringList splitAlertValues(const QString &alertText);

// Fills the summary from the 21 values; the category number is read by its numeric prefix, rounded to 16 bits.
AlertSummary summaryOf(const QStringList &values);

// The category name of a category value ("3" gives COMMAND_RESPONSE_ERROR; empty or text gives index 0's name).
QString categoryNameOf(const QString &categoryValue);

} // namespace osprel
