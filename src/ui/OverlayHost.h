#pragma once
// Where an overlay panel opens: over the current page at left 120, top 120 twips. Opening calls TabSet with the
// opening button's caption; closing hides the panel and brings back the page of the selected tab.

#include <QString>

class QWidget;

namespace osprel {

class OverlayHost
{
public:
    virtual ~OverlayHost() = default;
    virtual void openOverlay(QWidget *panel, const QString &caption) = 0;
    virtual void closeOverlay(QWidget *panel) = 0;
};

} // namespace osprel
