#pragma once
// What an alert object may reach of the main window (through gfrmServerForm): the link, the incoming queue, the
// lists whose headings it renames, and the category captions.

#include <QString>
#include <functional>

namespace osprel {

class clsAlertCls;
class FormLists;

class ServerForm
{
public:
    virtual ~ServerForm() = default;
    virtual bool Open_Link(clsAlertCls *obj) = 0;
    // obj is the object that holds the link.
    virtual bool isLinkedObject(const clsAlertCls *obj) const = 0;
    // Puts an alert on the incoming queue; false, with nothing queued, when it cannot be kept.
    virtual bool takeAlert(const QString &text) = 0;
    // Calls back once what was queued so far is on disk, with whether it is.
    virtual void whenStored(std::function<void(bool)> callback) = 0;
    // Work waits in the incoming, e-mail or fax queue.
    virtual bool queuesBusy() const = 0;
    virtual FormLists &lists() = 0;
    // The caption of lblErrCata(index), index 0..7.
    virtual void setCategoryCaption(int index, const QString &caption) = 0;
    // Acknowledges or clears a ticket; `how` is "bus" or "command line". False when there is no such open ticket
    // (a window without tickets has none).
    virtual bool acknowledgeTicket(const QString &, const QString &, const QString &, const QString &) { return false; }
    virtual bool clearTicket(const QString &, const QString &, const QString &) { return false; }
};

} // namespace osprel
