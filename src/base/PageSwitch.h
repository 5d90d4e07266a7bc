#pragma once
// The window's page switching: TabSet shows the page or focuses the control that belongs to a page name or a
// button caption; the current tab's caption brings the page back after an overlay closes.

#include <QString>

namespace osprel {

class PageSwitch
{
public:
    virtual ~PageSwitch() = default;
    virtual void TabSet(const QString &control) = 0;
    virtual QString currentTabCaption() const = 0;
};

} // namespace osprel
