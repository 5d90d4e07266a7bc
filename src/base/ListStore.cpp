#include "ListStore.h"

#include "RunError.h"

namespace osprel {

ListStore::ListStore(const QString &name) : m_name(name)
{
    m_model.setObjectName(name);
}

void ListStore::addColumn(const QString &caption, int widthTwips)
{
    m_model.appendColumn(caption, widthTwips);
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
    insert(count() + 1, columns);
    return count();
}

void ListStore::insert(int before, const QStringList &columns)
{
    const int n = qMax(1, columnCount());
    if (columns.size() > n)
        raise(Err::InvalidPropertyValue);
    if (before < 1 || before > count() + 1)
        raise(Err::IndexOutOfBounds);
    QStringList row = columns;
    while (row.size() < n)
        row.append(QString());
    if (before == count() + 1)
        m_model.appendRow(std::move(row));
    else
        m_model.insertRowAt(before - 1, std::move(row));
}

QString ListStore::text(int row, int column) const
{
    checkRow(row);
    checkColumn(column);
    return m_model.cell(row - 1, column - 1);
}

void ListStore::setText(int row, int column, const QString &text)
{
    checkRow(row);
    checkColumn(column);
    m_model.setCell(row - 1, column - 1, text);
}

QString ListStore::note(int row) const
{
    checkRow(row);
    return m_model.note(row - 1);
}

void ListStore::setNote(int row, const QString &text)
{
    checkRow(row);
    m_model.setNote(row - 1, text);
}

QStringList ListStore::row(int row) const
{
    checkRow(row);
    QStringList columns;
    for (int c = 1; c <= columnCount(); ++c)
        columns.append(m_model.cell(row - 1, c - 1));
    return columns;
}

void ListStore::remove(int row)
{
    checkRow(row);
    m_model.removeRowAt(row - 1);
}

void ListStore::clear()
{
    m_model.clearRows();
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
