#pragma once
// A report-style list view over one ListStore: column widths come from the store in twips, a width of 0 hides the
// column. Busy lists (the queues and the histories) take their rows through a CoalescedModel.

#include <QTableView>

namespace osprel {

class ListStore;

class ListView : public QTableView
{
    Q_OBJECT
public:
    enum class Refresh { Immediate, Coalesced };

    ListView(ListStore &store, Refresh refresh, QWidget *parent = nullptr);

    // Twips to logical pixels (15 twips a pixel at 100%; Qt scales logical pixels for the screen).
    static int twipsToPixels(int twips) { return twips / 15; }

private:
    void applyWidths();
};

} // namespace osprel
