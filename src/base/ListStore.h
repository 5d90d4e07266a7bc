#pragma once
// One report-style list (a queue, a history or a contact list) as the rest of the system sees it: rows and columns
// numbered from 1, column 1 being the row's own text. The rows live in a QStandardItemModel that the window shows.

#include <QStandardItemModel>
#include <QString>

namespace osprel {

class ListStore
{
public:
    // The header role that carries a column's width in twips (0 hides the column).
    static constexpr int WidthRole = Qt::UserRole + 1;

    explicit ListStore(const QString &name);

    const QString &name() const { return m_name; }
    QStandardItemModel *model() { return &m_model; }
    const QStandardItemModel *model() const { return &m_model; }

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
    QString text(int row, int column = 1) const;
    void setText(int row, int column, const QString &text);
    QStringList row(int row) const;
    void remove(int row);
    void clear();

private:
    void checkRow(int row) const;
    void checkColumn(int column) const;

    QString m_name;
    QStandardItemModel m_model;
};

} // namespace osprel
