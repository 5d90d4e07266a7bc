#pragma once
// One report-style list (a queue, a history or a contact list) as the rest of the system sees it: rows and columns
// numbered from 1, column 1 being the row's own text. The rows live in a ListModel that the window shows.

#include "ListModel.h"

#include <QString>

namespace osprel {

class ListStore
{
public:
    static constexpr int WidthRole = ListModel::WidthRole;

    explicit ListStore(const QString &name);

    const QString &name() const { return m_name; }
    ListModel *model() { return &m_model; }
    const ListModel *model() const { return &m_model; }

    void addColumn(const QString &caption, int widthTwips);
    int columnCount() const { return m_model.columnCount(); }
    QString header(int column) const;
    void setHeader(int column, const QString &caption);
    int widthTwips(int column) const;

    int count() const { return m_model.rowCount(); }
    bool isEmpty() const { return count() == 0; }
    // Appends a row with the given text and empty sub-items; returns its number.
    int add(const QString &text = QString());
    // Appends a row with all its columns at once (missing ones empty).
    int add(const QStringList &columns);
    // Inserts a row before row `before` (1 puts it at the top; count() + 1 appends).
    void insert(int before, const QStringList &columns);
    QString text(int row, int column = 1) const;
    void setText(int row, int column, const QString &text);
    // The row's note: a text kept with the row (why its send failed), shown as its tooltip.
    QString note(int row) const;
    void setNote(int row, const QString &text);
    QStringList row(int row) const;
    void remove(int row);
    void clear();

private:
    void checkRow(int row) const;
    void checkColumn(int column) const;

    QString m_name;
    ListModel m_model;
};

} // namespace osprel
