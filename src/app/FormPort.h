#pragma once
// What the start-up and shutdown procedures need of the main window, named for what they do to it, together with
// the ports of the subsystems the window serves.

#include "CommSetup.h"
#include "EmailQueuePort.h"
#include "FaxPort.h"
#include "PrioritySetupPort.h"
#include "RecipientsPort.h"
#include "StatusPort.h"
#include "TrayPort.h"

#include <QString>

namespace osprel {

class FormPort : public CommSetupPort,
                 public PrioritySetupPort,
                 public RecipientsPort,
                 public EmailQueuePort,
                 public FaxPort,
                 public StatusPort,
                 public TrayPort
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

    // The window itself (its icon and caption come with the tray port).
    virtual void showWindow() = 0;
    virtual void hideWindow() = 0;
    // Window state normal, brought to the foreground and shown.
    virtual void restoreWindow() = 0;

    // The notification-area icon.
    virtual void trayAdd(const QString &tip) = 0;
    virtual void trayRemove() = 0;

    // lblErrCata(index).
    virtual void setCategoryCaption(int index, const QString &caption) = 0;
};

} // namespace osprel
