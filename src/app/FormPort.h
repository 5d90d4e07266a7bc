#pragma once
// The main window as the start-up and shutdown procedures see it: its layout presets, its pages, showing and
// hiding it, and the notification-area icon (its icon and caption come with the tray port, the message box and
// the message panel with the notices).

#include "Notices.h"
#include "PageSwitch.h"
#include "TrayPort.h"

#include <QString>

namespace osprel {

class FormPort : public TrayPort, public PageSwitch, public Notices
{
public:
    // Layout presets made once at load.
    virtual void setPlacement(int heightTwips, int widthTwips) = 0;
    virtual void setServiceControlsVisible(bool visible) = 0;
    virtual void appendAppVersion(const QString &text) = 0;
    virtual void frameSetup() = 0;
    // Selects the first tab, clears lblContactErr and shows the queue lists and their labels.
    virtual void showStartPage() = 0;

    virtual void showWindow() = 0;
    virtual void hideWindow() = 0;
    // Window state normal, brought to the foreground and shown.
    virtual void restoreWindow() = 0;

    // The notification-area icon.
    virtual void trayAdd(const QString &tip) = 0;
    virtual void trayRemove() = 0;
};

} // namespace osprel
