#include "Notification.h"

#include "ErrorReport.h"
#include "Values.h"

namespace osprel {

namespace {
// Each line: its label and the alert value printed after it (-1: a title line, -2: the category name of value 19).
struct LineLayout
{
    const char *label;
    int field;
};
constexpr int kTitle = -1;
constexpr int kCategory = -2;

const LineLayout kLayout[kNotificationLineCount] = {
    {"Chamber Notification", kTitle},
    {"", kTitle},
    {"Chamber Information:", kTitle},
    {"\tAlert ID: ", 0},
    {"\tChamber ID: ", 1},
    {"\tChamber Name: ", 2},
    {"\tChamber Description: ", 3},
    {"\tOn / Off: ", 4},
    {"\tController Name: ", 5},
    {"\tConfiguration: ", 6},
    {"\tStatus: ", 7},
    {"\tLogging: ", 8},
    {"Alarm Information:", kTitle},
    {"\tError Code: ", 9},
    {"\tError Message: ", 10},
    {"\tAlarm Category: ", kCategory},
    {"\tAlarm Time: ", 20},
    {"Channel 1 Data:", kTitle},
    {"\tCH1 Set Point: ", 11},
    {"\tCH1 Actual: ", 12},
    {"\tCH1 Heat PID: ", 13},
    {"\tCH1 Cool PID: ", 14},
    {"Channel 2 Data:", kTitle},
    {"\tCH2 Set Point: ", 15},
    {"\tCH2 Actual: ", 16},
    {"\tCH2 Heat/Humidify PID: ", 17},
    {"\tCH2 Cool/Dehumidify PID: ", 18},
};
} // namespace

QStringList AddErrLables(const QStringList &fields)
{
    QStringList lines;
    const bool ok = guarded(QStringLiteral("AddErrLables"), [&] {
        lines.reserve(kNotificationLineCount);
        for (const LineLayout &layout : kLayout) {
            QString line = QString::fromLatin1(layout.label);
            if (layout.field == kCategory)
                line += categoryNameOf(element(fields, 19));
            else if (layout.field >= 0)
                line += element(fields, layout.field);
            // A line break inside a value would start a line of its own in the mail or on the fax page: one
            // value, one line.
            line.replace(u'\r', u' ').replace(u'\n', u' ');
            lines.append(line);
        }
    });
    return ok ? lines : QStringList();
}

QStringList SplitString(const QString &strAlertString, AlertSummary &summary)
{
    QStringList lines;
    guarded(QStringLiteral("SplitString"), [&] {
        const QStringList values = splitAlertValues(strAlertString);
        summary = summaryOf(values);
        lines = AddErrLables(values);
    });
    return lines;
}

QString FormatErrMsg(const QString &strAlertString, AlertSummary &summary)
{
    QString result;
    guarded(QStringLiteral("FormatErrMsg"), [&] {
        for (const QString &line : SplitString(strAlertString, summary))
            result += Trim(line + QStringLiteral("\r\n"));
    });
    return result;
}

} // namespace osprel
