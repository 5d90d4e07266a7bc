#pragma once
// A report-style list view over one ListStore: column widths come from the store in twips, a width of 0 hides the
// column, and a column widens to show what it holds. Busy lists (the queues and the histories) take their rows
// through a CoalescedModel.

#include <QTableView>
#include <QTimer>

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

    // Widens each column to its content (bounded), never below its design width.
    void fitToContents();

protected:
    void showEvent(QShowEvent *event) override;

private:
    static constexpr int kMaxFittedWidth = 420;
    void applyWidths();
    QTimer m_fitTimer;
};

} // namespace osprel
