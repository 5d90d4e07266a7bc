#include "StatusLine.h"

#include "Log.h"

#include <QHBoxLayout>
#include <QLabel>

namespace osprel {

StatusLine::StatusLine(Log &log, QWidget *parent) : QWidget(parent)
{
    m_lblAppVersion = new QLabel(tr("Version"), this);
    m_lblAppVersion->setObjectName(QStringLiteral("lblAppVersion"));
    m_lblDumpStrFunctErr = new QLabel(this);
    m_lblDumpStrFunctErr->setObjectName(QStringLiteral("lblDumpStrFunctErr"));
    m_lblDumpStrFunctErr->setStyleSheet(QStringLiteral("color: #b00000"));
    m_lblMessagePanel = new QLabel(this);
    m_lblMessagePanel->setObjectName(QStringLiteral("lblMessagePanel"));
    m_lblMessagePanel->setWordWrap(true);
    // A long message wraps; it never widens the window.
    m_lblMessagePanel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_lblMessagePanel->setStyleSheet(QStringLiteral("color: #004080"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_lblMessagePanel, 2);
    layout->addWidget(m_lblDumpStrFunctErr, 1);
    layout->addWidget(m_lblAppVersion);
    connect(&log, &Log::functErrChanged, m_lblDumpStrFunctErr, &QLabel::setText);
}

void StatusLine::appendAppVersion(const QString &text)
{
    m_lblAppVersion->setText(m_lblAppVersion->text() + text);
}

void StatusLine::showPanelMessage(const QString &text)
{
    m_lblMessagePanel->setText(text);
    m_lblMessagePanel->setToolTip(text);
}

} // namespace osprel
