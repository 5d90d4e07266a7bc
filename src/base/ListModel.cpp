#include "ListModel.h"

namespace osprel {

int ListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_headers.size());
}

QVariant ListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return QVariant();
    // A row with a note (why a send failed) shows it as the tooltip of every cell.
    if (role == Qt::ToolTipRole && !note(index.row()).isEmpty())
        return note(index.row());
    return cell(index.row(), index.column());
}

QVariant ListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_headers.size())
        return QAbstractTableModel::headerData(section, orientation, role);
    if (role == Qt::DisplayRole)
        return m_headers.at(section).caption;
    if (role == WidthRole)
        return m_headers.at(section).widthTwips;
    return QVariant();
}

bool ListModel::setHeaderData(int section, Qt::Orientation orientation, const QVariant &value, int role)
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_headers.size() || role != Qt::EditRole)
        return false;
    m_headers[section].caption = value.toString();
    Q_EMIT headerDataChanged(orientation, section, section);
    return true;
}

void ListModel::appendColumn(const QString &caption, int widthTwips)
{
    const int column = int(m_headers.size());
    beginInsertColumns(QModelIndex(), column, column);
    m_headers.append({caption, widthTwips});
    endInsertColumns();
}

void ListModel::appendRow(QStringList columns)
{
    const int row = int(m_rows.size());
    beginInsertRows(QModelIndex(), row, row);
    m_rows.push_back({std::move(columns), QString()});
    endInsertRows();
}

void ListModel::insertRowAt(int row, QStringList columns)
{
    beginInsertRows(QModelIndex(), row, row);
    m_rows.insert(m_rows.begin() + row, Row{std::move(columns), QString()});
    endInsertRows();
}

const QString &ListModel::cell(int row, int column) const
{
    static const QString empty;
    const QStringList &columns = m_rows[size_t(row)].cells;
    return column < columns.size() ? columns.at(column) : empty;
}

void ListModel::setCell(int row, int column, const QString &text)
{
    QStringList &columns = m_rows[size_t(row)].cells;
    // A cell set to the text it holds changes nothing: no repaint, no rewrite of a stored queue row. The send
    // status sets the same status text on every tick while a message is under way.
    if (column < columns.size() && columns.at(column) == text)
        return;
    while (columns.size() <= column)
        columns.append(QString());
    columns[column] = text;
    const QModelIndex changed = index(row, column);
    Q_EMIT dataChanged(changed, changed, {Qt::DisplayRole});
}

const QString &ListModel::note(int row) const
{
    return m_rows[size_t(row)].note;
}

void ListModel::setNote(int row, const QString &text)
{
    m_rows[size_t(row)].note = text;
    Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1), {Qt::ToolTipRole});
}

void ListModel::removeRowAt(int row)
{
    beginRemoveRows(QModelIndex(), row, row);
    m_rows.erase(m_rows.begin() + row);
    endRemoveRows();
}

void ListModel::clearRows()
{
    if (m_rows.empty())
        return;
    beginRemoveRows(QModelIndex(), 0, int(m_rows.size()) - 1);
    m_rows.clear();
    endRemoveRows();
}

} // namespace osprel
