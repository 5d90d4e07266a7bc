#include "CoalescedModel.h"

namespace osprel {

CoalescedModel::CoalescedModel(QAbstractItemModel *source, QObject *parent)
    : QAbstractTableModel(parent), m_source(source), m_rows(source->rowCount()), m_columns(source->columnCount())
{
    m_refresh.setSingleShot(true);
    m_refresh.setInterval(kRefreshMs); // a display rate, not a system timer: not scaled
    connect(&m_refresh, &QTimer::timeout, this, &CoalescedModel::refresh);
    connect(source, &QAbstractItemModel::rowsInserted, this, &CoalescedModel::onRowsInserted);
    connect(source, &QAbstractItemModel::rowsRemoved, this, &CoalescedModel::onRowsRemoved);
    auto resetNow = [this] {
        m_needsReset = true;
        refresh();
    };
    connect(source, &QAbstractItemModel::columnsInserted, this, resetNow);
    connect(source, &QAbstractItemModel::modelReset, this, resetNow);
    connect(source, &QAbstractItemModel::headerDataChanged, this, &QAbstractItemModel::headerDataChanged);
    connect(source, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex &from, const QModelIndex &to, const QList<int> &roles) {
                const int first = from.row() + m_removedAtFront, last = to.row() + m_removedAtFront;
                if (!m_needsReset && last < m_rows)
                    Q_EMIT dataChanged(index(first, from.column()), index(last, to.column()), roles);
            });
}

int CoalescedModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

int CoalescedModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_columns;
}

QVariant CoalescedModel::data(const QModelIndex &index, int role) const
{
    // Rows the source already took off the front are still the view's first rows until the next refresh: they
    // show empty, and every later row shows its own source row.
    const int sourceRow = index.row() - m_removedAtFront;
    if (!index.isValid() || sourceRow < 0 || sourceRow >= m_source->rowCount())
        return QVariant();
    return m_source->data(m_source->index(sourceRow, index.column()), role);
}

QVariant CoalescedModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    return m_source->headerData(section, orientation, role);
}

void CoalescedModel::onRowsInserted(const QModelIndex &, int first, int last)
{
    // Appends keep the batch simple; an insert among the rows the view knows needs a reset.
    if (first < m_source->rowCount() - (last - first + 1))
        m_needsReset = true;
    scheduleRefresh();
}

void CoalescedModel::onRowsRemoved(const QModelIndex &, int first, int last)
{
    if (first == 0 && !m_needsReset && m_removedAtFront + last + 1 <= m_rows)
        m_removedAtFront += last + 1;
    else
        m_needsReset = true;
    scheduleRefresh();
}

void CoalescedModel::scheduleRefresh()
{
    if (!m_refresh.isActive())
        m_refresh.start();
}

void CoalescedModel::refresh()
{
    m_refresh.stop();
    if (m_needsReset) {
        beginResetModel();
        m_rows = m_source->rowCount();
        m_columns = m_source->columnCount();
        m_removedAtFront = 0;
        m_needsReset = false;
        endResetModel();
        return;
    }
    if (m_removedAtFront > 0) {
        beginRemoveRows(QModelIndex(), 0, m_removedAtFront - 1);
        m_rows -= m_removedAtFront;
        m_removedAtFront = 0;
        endRemoveRows();
    }
    const int total = m_source->rowCount();
    if (total > m_rows) {
        beginInsertRows(QModelIndex(), m_rows, total - 1);
        m_rows = total;
        endInsertRows();
    }
}

} // namespace osprel
