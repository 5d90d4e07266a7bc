#include "ListView.h"

#include "ListStore.h"

#include <QHeaderView>

namespace osprel {

ListView::ListView(ListStore &store, QWidget *parent) : QTreeView(parent)
{
    setObjectName(store.name());
    setModel(store.model());
    setRootIsDecorated(false);
    setUniformRowHeights(true); // the queues can hold many thousand rows
    setAlternatingRowColors(true);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    header()->setStretchLastSection(false);
    connect(store.model(), &QAbstractItemModel::columnsInserted, this, &ListView::applyWidths);
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
