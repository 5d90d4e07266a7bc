#include "ListStore.h"

#include "RunError.h"

namespace osprel {

ListStore::ListStore(const QString &name) : m_name(name)
{
    m_model.setObjectName(name);
}

void ListStore::addColumn(const QString &caption, int widthTwips)
{
    const int column = m_model.columnCount();
    m_model.setColumnCount(column + 1);
    m_model.setHeaderData(column, Qt::Horizontal, caption);
    m_model.setHeaderData(column, Qt::Horizontal, widthTwips, WidthRole);
}

QString ListStore::header(int column) const
{
    checkColumn(column);
    return m_model.headerData(column - 1, Qt::Horizontal).toString();
}

void ListStore::setHeader(int column, const QString &caption)
{
    checkColumn(column);
    m_model.setHeaderData(column - 1, Qt::Horizontal, caption);
}

int ListStore::widthTwips(int column) const
{
    checkColumn(column);
    return m_model.headerData(column - 1, Qt::Horizontal, WidthRole).toInt();
}

int ListStore::add(const QString &text)
{
    return add(QStringList{text});
}

int ListStore::add(const QStringList &columns)
{
    if (columns.size() > qMax(1, columnCount()))
        raise(Err::InvalidPropertyValue);
    QList<QStandardItem *> items;
    const int n = qMax(1, columnCount());
    items.reserve(n);
    for (int c = 0; c < n; ++c) {
        auto *item = new QStandardItem(c < columns.size() ? columns.at(c) : QString());
        item->setEditable(false);
        items.append(item);
    }
    m_model.appendRow(items);
    return m_model.rowCount();
}

QString ListStore::text(int row, int column) const
{
    checkRow(row);
    checkColumn(column);
    const QStandardItem *item = m_model.item(row - 1, column - 1);
    return item ? item->text() : QString();
}

void ListStore::setText(int row, int column, const QString &text)
{
    checkRow(row);
    checkColumn(column);
    if (QStandardItem *item = m_model.item(row - 1, column - 1))
        item->setText(text);
    else
        m_model.setItem(row - 1, column - 1, new QStandardItem(text));
}

QStringList ListStore::row(int row) const
{
    checkRow(row);
    QStringList columns;
    for (int c = 1; c <= columnCount(); ++c)
        columns.append(text(row, c));
    return columns;
}

void ListStore::remove(int row)
{
    checkRow(row);
    m_model.removeRow(row - 1);
}

void ListStore::clear()
{
    m_model.removeRows(0, m_model.rowCount());
}

void ListStore::checkRow(int row) const
{
    if (row < 1 || row > count())
        raise(Err::IndexOutOfBounds);
}

void ListStore::checkColumn(int column) const
{
    // The row text is column 1 even before any column header exists; sub-items need their column.
    if (column < 1 || (column > 1 && column > columnCount()))
        raise(Err::InvalidPropertyValue);
}

} // namespace osprel
