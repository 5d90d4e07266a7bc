#pragma once
// What an alert object may reach of the main window (through gfrmServerForm): the link, the lists whose headings
// it renames, and the category captions.

#include <QString>

namespace osprel {

class clsAlertCls;
class FormLists;

class ServerForm
{
public:
    virtual ~ServerForm() = default;
    virtual bool Open_Link(clsAlertCls *obj) = 0;
    virtual FormLists &lists() = 0;
    // The caption of lblErrCata(index), index 0..7.
    virtual void setCategoryCaption(int index, const QString &caption) = 0;
};

} // namespace osprel
