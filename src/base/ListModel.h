#pragma once
// The rows of one list as a table model: rows of text in a double-ended queue, so that appending a job and taking
// the oldest one off the front cost the same however long the queue is.

#include <QAbstractTableModel>
#include <QStringList>
#include <deque>

namespace osprel {

class ListModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    // The header role that carries a column's width in twips (0 hides the column).
    static constexpr int WidthRole = Qt::UserRole + 1;

    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool setHeaderData(int section, Qt::Orientation orientation, const QVariant &value,
                       int role = Qt::EditRole) override;

    // Storage, 0-based; callers check the bounds.
    void appendColumn(const QString &caption, int widthTwips);
    void appendRow(QStringList columns);
    void insertRowAt(int row, QStringList columns);
    const QString &cell(int row, int column) const;
    void setCell(int row, int column, const QString &text);
    // A text that goes with a row without being one of its columns; shown as the row's tooltip.
    const QString &note(int row) const;
    void setNote(int row, const QString &text);
    void removeRowAt(int row);
    void clearRows();

private:
    struct Header
    {
        QString caption;
        int widthTwips;
    };
    struct Row
    {
        QStringList cells;
        QString note;
    };
    QList<Header> m_headers;
    std::deque<Row> m_rows;
};

} // namespace osprel
