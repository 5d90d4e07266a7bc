#pragma once
// The line at the foot of the window: the message panel (lblMessagePanel), the log's own failure
// (lblDumpStrFunctErr) and the version (lblAppVersion).

#include <QWidget>

class QLabel;

namespace osprel {

class Log;

class StatusLine : public QWidget
{
    Q_OBJECT
public:
    StatusLine(Log &log, QWidget *parent = nullptr);

    void appendAppVersion(const QString &text);
    void showPanelMessage(const QString &text);

private:
    QLabel *m_lblAppVersion, *m_lblDumpStrFunctErr, *m_lblMessagePanel;
};

} // namespace osprel
