#pragma once
// The three queues on disk. Every change to a row of the incoming, e-mail or fax queue list is made to its row in
// QueueRows as well, inside the database's current batch; on start the rows found are put back into their lists.
// When the file cannot be written the journal says so once, refuses nothing itself (the intake asks healthy()),
// and tries again each second until the whole of the three lists is on disk again.

#include <QList>
#include <QMetaObject>
#include <QObject>
#include <QSqlQuery>
#include <QString>
#include <QTimer>
#include <array>
#include <deque>
#include <functional>

namespace osprel {

class Database;
class FormLists;
class ListStore;

class QueueJournal : public QObject
{
    Q_OBJECT
public:
    QueueJournal(Database &database, FormLists &lists, QObject *parent = nullptr);
    ~QueueJournal() override;

    struct Counts
    {
        int alerts = 0, emails = 0, faxes = 0;
        int total() const { return alerts + emails + faxes; }
    };
    // Puts the stored rows back into the (empty) lists, in their order; logs one line when any were found.
    Counts restore();
    // Starts and stops following the lists. Stopping comes before anything empties the lists at shutdown, so that
    // what is not yet delivered stays on disk for the next start.
    void attach();
    void detach();

    bool healthy() const { return m_healthy; }
    const QString &problem() const { return m_problem; }
    // Row `row` (1-based) of list is on disk (in the current batch at least).
    bool isStored(const ListStore &list, int row) const;

    // Writes the three lists whole, replacing what the table holds; true when that was committed.
    bool resync();
    // A write or a commit failed: the lists are ahead of the file until a resync succeeds.
    void fail(const QString &reason);

Q_SIGNALS:
    void healthChanged(bool healthy, const QString &reason);

private:
    struct Mirror
    {
        ListStore *list = nullptr;
        QString queue;
        // Rows leave from the front far more often than anywhere else: a deque removes the head in constant time.
        std::deque<qint64> keys; // 0: not on disk
        std::deque<double> positions;
        QList<QMetaObject::Connection> connections;
    };

    void inserted(Mirror &mirror, int first, int last);
    void changed(Mirror &mirror, int first, int last);
    void removing(Mirror &mirror, int first, int last);
    qint64 insertRow(const Mirror &mirror, int index, double position);
    // The three statements the journal runs on every change, prepared once per opening of the file.
    QSqlQuery &statement(int which);
    bool write(const std::function<void()> &work);

    Database &m_database;
    std::array<Mirror, 3> m_mirrors;
    bool m_healthy = true;
    QString m_problem;
    QTimer m_retry;
    QSqlQuery m_statements[3];
    int m_preparedFor = -1;
};

} // namespace osprel
