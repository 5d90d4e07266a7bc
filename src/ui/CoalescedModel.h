#pragma once
// A view's window on a busy list: rows added or removed reach the view at most four times a second, in one batch,
// so that thousands of alerts a second cost the window next to nothing per alert. Changed cells show at once.

#include <QAbstractTableModel>
#include <QTimer>

namespace osprel {

class CoalescedModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    static constexpr int kRefreshMs = 250;

    explicit CoalescedModel(QAbstractItemModel *source, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    void onRowsInserted(const QModelIndex &parent, int first, int last);
    void onRowsRemoved(const QModelIndex &parent, int first, int last);
    void scheduleRefresh();
    void refresh();

    QAbstractItemModel *m_source;
    int m_rows = 0;
    // Changes since the last refresh, when they are only rows taken off the front and rows added at the end (what
    // a queue does); anything else is shown by a reset.
    int m_removedAtFront = 0;
    bool m_needsReset = false;
    int m_columns = 0;
    QTimer m_refresh;
};

} // namespace osprel
