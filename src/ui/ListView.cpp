#include "ListView.h"

#include "CoalescedModel.h"
#include "ListStore.h"

#include <QHeaderView>

namespace osprel {

ListView::ListView(ListStore &store, Refresh refresh, QWidget *parent) : QTableView(parent)
{
    setObjectName(store.name());
    QAbstractItemModel *model = store.model();
    if (refresh == Refresh::Coalesced)
        model = new CoalescedModel(model, this);
    setModel(model);
    // A report list: one line a row, whole-row selection, no grid and no row numbers.
    setShowGrid(false);
    setWordWrap(false);
    setAlternatingRowColors(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setHighlightSections(false);
    connect(model, &QAbstractItemModel::columnsInserted, this, &ListView::applyWidths);
    connect(model, &QAbstractItemModel::modelReset, this, &ListView::applyWidths);
    applyWidths();
}

void ListView::applyWidths()
{
    for (int column = 0; column < model()->columnCount(); ++column) {
        const int twips = model()->headerData(column, Qt::Horizontal, ListStore::WidthRole).toInt();
        setColumnHidden(column, twips == 0);
        if (twips > 0)
            setColumnWidth(column, twipsToPixels(twips));
    }
}

} // namespace osprel
