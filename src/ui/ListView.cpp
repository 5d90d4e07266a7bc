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
    // The last column takes the width nobody else uses.
    horizontalHeader()->setStretchLastSection(true);
    connect(model, &QAbstractItemModel::columnsInserted, this, &ListView::applyWidths);
    connect(model, &QAbstractItemModel::modelReset, this, &ListView::applyWidths);
    // Columns widen to what they hold, once per batch of changes.
    m_fitTimer.setSingleShot(true);
    m_fitTimer.setInterval(0);
    connect(&m_fitTimer, &QTimer::timeout, this, &ListView::fitToContents);
    for (auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(model, signal, &m_fitTimer, qOverload<>(&QTimer::start));
    connect(model, &QAbstractItemModel::dataChanged, &m_fitTimer, qOverload<>(&QTimer::start));
    connect(model, &QAbstractItemModel::modelReset, &m_fitTimer, qOverload<>(&QTimer::start));
    applyWidths();
}

void ListView::fitToContents()
{
    // A hidden view would measure every row (it has no visible ones): with a long queue behind a window in the
    // notification area that costs more than the work itself. It is fitted when it shows.
    if (!isVisible())
        return;
    for (int column = 0; column < model()->columnCount(); ++column) {
        if (isColumnHidden(column))
            continue;
        const int twips = model()->headerData(column, Qt::Horizontal, ListStore::WidthRole).toInt();
        // Never below the design width, never so wide that one long text pushes the rest out of sight.
        const int content = qMin(sizeHintForColumn(column), kMaxFittedWidth);
        const int width = qMax(twipsToPixels(twips), content);
        if (width > columnWidth(column))
            setColumnWidth(column, width);
    }
}

void ListView::showEvent(QShowEvent *event)
{
    QTableView::showEvent(event);
    m_fitTimer.start();
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
