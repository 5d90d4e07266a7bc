#pragma once
// A report-style list view over one ListStore: column widths come from the store in twips, a width of 0 hides the
// column.

#include <QTreeView>

namespace osprel {

class ListStore;

class ListView : public QTreeView
{
    Q_OBJECT
public:
    ListView(ListStore &store, QWidget *parent = nullptr);

    // Twips to logical pixels (15 twips a pixel at 100%; Qt scales logical pixels for the screen).
    static int twipsToPixels(int twips) { return twips / 15; }

private:
    void applyWidths();
};

} // namespace osprel
