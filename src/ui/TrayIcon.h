#pragma once
// The notification-area icon and its pop-up menu (mPopupSys with mPopRestore and mPopExit). Where the desktop has no
// notification area, there is none and every call does nothing.

#include <QIcon>
#include <QObject>

class QMenu;
class QSystemTrayIcon;

namespace osprel {

class TrayIcon : public QObject
{
    Q_OBJECT
public:
    explicit TrayIcon(QWidget *window);
    ~TrayIcon() override;

    void add(const QIcon &icon, const QString &tip);
    void remove();
    // Mirrors the window's icon and caption (SysTrayUpdate).
    void update(const QIcon &icon, const QString &tip);
    QSystemTrayIcon *icon() const { return m_tray; }

Q_SIGNALS:
    // The mouse message as the classic tray reported it: 514 left button up, 515 double-click.
    void message(int message);
    void restoreRequested();
    void exitRequested();

private:
    QWidget *m_window;
    QSystemTrayIcon *m_tray = nullptr;
    QMenu *m_mPopupSys = nullptr;
};

} // namespace osprel
