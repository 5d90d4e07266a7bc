#include "TrayIcon.h"

#include <QMenu>
#include <QSystemTrayIcon>

namespace osprel {

namespace {
constexpr int kLeftButtonUp = 514;
constexpr int kLeftButtonDoubleClick = 515;
} // namespace

TrayIcon::TrayIcon(QWidget *window) : QObject(window), m_window(window) {}

TrayIcon::~TrayIcon()
{
    remove();
}

void TrayIcon::add(const QIcon &icon, const QString &tip)
{
    if (m_tray || !QSystemTrayIcon::isSystemTrayAvailable())
        return;
    m_tray = new QSystemTrayIcon(icon, this);
    m_tray->setObjectName(QStringLiteral("trayIcon"));
    m_tray->setToolTip(tip);
    m_mPopupSys = new QMenu(QStringLiteral("&SysTray"), m_window);
    m_mPopupSys->setObjectName(QStringLiteral("mPopupSys"));
    QAction *restore = m_mPopupSys->addAction(QStringLiteral("&Restore"));
    restore->setObjectName(QStringLiteral("mPopRestore"));
    connect(restore, &QAction::triggered, this, &TrayIcon::restoreRequested);
    QAction *exit = m_mPopupSys->addAction(QStringLiteral("&Exit"));
    exit->setObjectName(QStringLiteral("mPopExit"));
    connect(exit, &QAction::triggered, this, &TrayIcon::exitRequested);
    m_tray->setContextMenu(m_mPopupSys);
    connect(m_tray, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger)
            Q_EMIT message(kLeftButtonUp);
        else if (reason == QSystemTrayIcon::DoubleClick)
            Q_EMIT message(kLeftButtonDoubleClick);
    });
    m_tray->show();
}

void TrayIcon::remove()
{
    delete m_tray;
    m_tray = nullptr;
    delete m_mPopupSys;
    m_mPopupSys = nullptr;
}

void TrayIcon::update(const QIcon &icon, const QString &tip)
{
    if (!m_tray)
        return;
    m_tray->setIcon(icon);
    m_tray->setToolTip(tip);
}

} // namespace osprel
