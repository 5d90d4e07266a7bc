#pragma once
// What the start-up and shutdown procedures need of the main window, named for what they do to it, together with
// the ports of the subsystems the window serves.

#include "PriorityPort.h"
#include "StorePort.h"

#include <QString>

namespace osprel {

class FormPort : public StorePort, public PriorityPort
{
public:

    // Layout presets made once at load.
    virtual void setPlacement(int heightTwips, int widthTwips) = 0;
    virtual void setTestFields(const QString &emailTo, const QString &emailSubject, const QString &emailMessage,
                               const QString &faxName, const QString &faxNumber, const QString &faxMessage) = 0;
    virtual void setServiceControlsVisible(bool visible) = 0;
    virtual void appendAppVersion(const QString &text) = 0;
    virtual void frameSetup() = 0;
    virtual void TabSet(const QString &control) = 0;
    // Selects the first tab, clears lblContactErr and shows the queue lists and their labels.
    virtual void showStartPage() = 0;

    // The window itself.
    virtual void setWindowImage(int image) = 0; // 1 normal, 2 sent, 3 failed
    virtual void setCaption(const QString &caption) = 0;
    virtual void showWindow() = 0;
    virtual void hideWindow() = 0;
    // Window state normal, brought to the foreground and shown.
    virtual void restoreWindow() = 0;

    // The notification-area icon.
    virtual void trayAdd(const QString &tip) = 0;
    virtual void trayRemove() = 0;
    virtual void SysTrayUpdate() = 0;

    // lblErrCata(index).
    virtual void setCategoryCaption(int index, const QString &caption) = 0;
};

} // namespace osprel
