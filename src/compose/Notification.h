#pragma once
// The 27-line plain-text notification made of an alert: the body of every e-mail and the content of every fax page.

#include "AlertRecord.h"

#include <QString>
#include <QStringList>

namespace osprel {

constexpr int kNotificationLineCount = 27;

// The 27 labelled lines of the 21 alert values; fewer than 21 values is reported and gives no lines.
QStringList AddErrLables(const QStringList &fields);

// Splits an alert into its values, fills its summary and returns its notification lines; an alert of more than 21
// values is reported and gives no lines.
QStringList SplitString(const QString &strAlertString, AlertSummary &summary);

// The notification text: every line ended by CR LF, leading blanks of a line removed, so 27 line breaks in all.
QString FormatErrMsg(const QString &strAlertString, AlertSummary &summary);

} // namespace osprel
