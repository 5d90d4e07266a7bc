#include "QueueJournal.h"

#include "Database.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "ListStore.h"
#include "Log.h"
#include "RunError.h"
#include "TimeScale.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

namespace osprel {

namespace {
QString encode(const QStringList &columns)
{
    return QString::fromUtf8(QJsonDocument(QJsonArray::fromStringList(columns)).toJson(QJsonDocument::Compact));
}

QStringList decode(const QString &text)
{
    QStringList columns;
    const QJsonArray array = QJsonDocument::fromJson(text.toUtf8()).array();
    for (const QJsonValue &value : array)
        columns.append(value.toString());
    return columns;
}
} // namespace

QueueJournal::QueueJournal(Database &database, FormLists &lists, QObject *parent)
    : QObject(parent), m_database(database)
{
    m_mirrors[0].list = &lists.lvwMsgQue;
    m_mirrors[1].list = &lists.lvwSendEmailQue;
    m_mirrors[2].list = &lists.lvwSendFaxQue;
    for (Mirror &mirror : m_mirrors)
        mirror.queue = mirror.list->name();
    m_retry.setInterval(qMax(1, TimeScale::interval(1000)));
    connect(&m_retry, &QTimer::timeout, this, [this] { resync(); });
    m_database.setCommitFailureHandler([this](const QString &reason) { fail(reason); });
}

QueueJournal::~QueueJournal()
{
    detach();
    m_database.setCommitFailureHandler(nullptr);
}

QueueJournal::Counts QueueJournal::restore()
{
    Counts counts;
    guarded(QStringLiteral("QueueRestore"), [&] {
        int *found[3] = {&counts.alerts, &counts.emails, &counts.faxes};
        for (std::size_t i = 0; i < m_mirrors.size(); ++i) {
            Mirror &mirror = m_mirrors[i];
            QSqlQuery rows = m_database.run(
                QStringLiteral("SELECT rowid, Position, Columns FROM QueueRows WHERE Queue = ? ORDER BY Position, rowid"),
                {mirror.queue});
            while (rows.next()) {
                mirror.list->add(decode(rows.value(2).toString()));
                mirror.keys.push_back(rows.value(0).toLongLong());
                mirror.positions.push_back(rows.value(1).toDouble());
                ++*found[i];
            }
        }
    });
    if (counts.total() > 0)
        DumpStr(QStringLiteral("Restored %1 alerts, %2 e-mails and %3 fax from the last run")
                    .arg(counts.alerts)
                    .arg(counts.emails)
                    .arg(counts.faxes));
    return counts;
}

void QueueJournal::attach()
{
    for (Mirror &mirror : m_mirrors) {
        if (!mirror.connections.isEmpty())
            continue;
        ListModel *model = mirror.list->model();
        // The lists are ListStore models: rows are only inserted, changed cell by cell, and removed.
        mirror.connections = {
            connect(model, &QAbstractItemModel::rowsInserted, this,
                    [this, &mirror](const QModelIndex &, int first, int last) { inserted(mirror, first, last); }),
            connect(model, &QAbstractItemModel::dataChanged, this,
                    [this, &mirror](const QModelIndex &from, const QModelIndex &to) {
                        changed(mirror, from.row(), to.row());
                    }),
            connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this,
                    [this, &mirror](const QModelIndex &, int first, int last) { removing(mirror, first, last); }),
        };
    }
}

void QueueJournal::detach()
{
    for (Mirror &mirror : m_mirrors) {
        for (const QMetaObject::Connection &connection : std::as_const(mirror.connections))
            disconnect(connection);
        mirror.connections.clear();
    }
}

bool QueueJournal::isStored(const ListStore &list, int row) const
{
    for (const Mirror &mirror : m_mirrors) {
        if (mirror.list == &list)
            return m_healthy && row >= 1 && row <= int(mirror.keys.size()) && mirror.keys[std::size_t(row - 1)] != 0;
    }
    return false;
}

namespace {
enum Statement { Insert, Update, Delete };

void runBound(QSqlQuery &query, const QVariantList &values)
{
    for (int i = 0; i < values.size(); ++i)
        query.bindValue(i, values.at(i));
    if (!query.exec())
        raise(Err::ProviderError, query.lastError().text());
}

void finished(QSqlQuery &query)
{
    query.finish(); // reset, still prepared
}
} // namespace

QSqlQuery &QueueJournal::statement(int which)
{
    if (!m_database.isOpen())
        raise(Err::ConnectionClosed);
    if (m_preparedFor != m_database.opening()) {
        static const char *const sql[3] = {"INSERT INTO QueueRows (Queue, Position, Columns) VALUES (?, ?, ?)",
                                           "UPDATE QueueRows SET Columns = ? WHERE rowid = ?",
                                           "DELETE FROM QueueRows WHERE rowid = ?"};
        for (int i = 0; i < 3; ++i) {
            m_statements[i] = QSqlQuery(m_database.connection());
            if (!m_statements[i].prepare(QString::fromLatin1(sql[i])))
                raise(Err::ProviderError, m_statements[i].lastError().text());
        }
        m_preparedFor = m_database.opening();
    }
    return m_statements[which];
}

qint64 QueueJournal::insertRow(const Mirror &mirror, int index, double position)
{
    QSqlQuery &insert = statement(Insert);
    runBound(insert, {mirror.queue, position, encode(mirror.list->row(index + 1))});
    const qint64 key = insert.lastInsertId().toLongLong();
    finished(insert);
    return key;
}

void QueueJournal::inserted(Mirror &mirror, int first, int last)
{
    for (int index = first; index <= last; ++index) {
        // A row's place is kept as a number between its neighbours', so that no other row is rewritten.
        const int count = int(mirror.positions.size());
        double position = 1;
        if (count > 0 && index >= count)
            position = mirror.positions.back() + 1;
        else if (count > 0 && index == 0)
            position = mirror.positions.front() - 1;
        else if (count > 0)
            position = (mirror.positions[std::size_t(index - 1)] + mirror.positions[std::size_t(index)]) / 2;
        mirror.positions.insert(mirror.positions.begin() + index, position);
        mirror.keys.insert(mirror.keys.begin() + index, 0);
        if (m_healthy)
            write([&] { mirror.keys[std::size_t(index)] = insertRow(mirror, index, position); });
    }
}

void QueueJournal::changed(Mirror &mirror, int first, int last)
{
    if (!m_healthy)
        return;
    for (int index = first; index <= last && index < int(mirror.keys.size()); ++index) {
        const qint64 key = mirror.keys[std::size_t(index)];
        if (key == 0)
            continue;
        write([&] {
            runBound(statement(Update), {encode(mirror.list->row(index + 1)), key});
            finished(statement(Update));
        });
    }
}

void QueueJournal::removing(Mirror &mirror, int first, int last)
{
    for (int index = last; index >= first; --index) {
        if (index >= int(mirror.keys.size()))
            continue;
        const qint64 key = mirror.keys[std::size_t(index)];
        mirror.keys.erase(mirror.keys.begin() + index);
        mirror.positions.erase(mirror.positions.begin() + index);
        if (m_healthy && key != 0)
            write([&] {
                runBound(statement(Delete), {key});
                finished(statement(Delete));
            });
    }
}

// Runs one change inside the current batch (opening it when none is open, after checking that the file may still
// be written); a failure marks the journal unhealthy instead of leaving the event handler with an error.
bool QueueJournal::write(const std::function<void()> &work)
{
    try {
        if (!m_database.inBatch()) {
            if (!m_database.writable())
                raise(Err::PermissionDenied, m_database.isOpen() ? QStringLiteral("the file is read-only")
                                                                 : QStringLiteral("the file is not open"));
            m_database.beginBatch();
        }
        work();
        return true;
    } catch (const RunError &e) {
        fail(e.description());
    } catch (const std::exception &e) {
        fail(QString::fromUtf8(e.what()));
    }
    return false;
}

void QueueJournal::fail(const QString &reason)
{
    if (!m_healthy)
        return;
    m_healthy = false;
    m_problem = reason;
    DumpStr(QStringLiteral("The database ") + m_database.path() + QStringLiteral(" cannot be written (") + reason +
            QStringLiteral("): alerts are refused until it can."));
    m_retry.start();
    Q_EMIT healthChanged(false, m_problem);
}

bool QueueJournal::resync()
{
    bool stored = false;
    try {
        m_database.commitBatch();
        // A reopened file is a new connection: the prepared statements of the old one go first.
        for (QSqlQuery &query : m_statements)
            query = QSqlQuery();
        m_preparedFor = -1;
        if (!m_database.reopenIfWritable() || !m_database.writable())
            return false;
        m_database.beginBatch();
        m_database.run(QStringLiteral("DELETE FROM QueueRows"));
        for (Mirror &mirror : m_mirrors) {
            for (std::size_t index = 0; index < mirror.keys.size(); ++index) {
                mirror.positions[index] = double(index + 1);
                mirror.keys[index] = insertRow(mirror, int(index), double(index + 1));
            }
        }
        stored = m_database.commitBatch();
    } catch (const RunError &) {
        m_database.commitBatch();
    }
    if (stored) {
        m_healthy = true;
        m_retry.stop();
        m_problem.clear();
        DumpStr(QStringLiteral("The database ") + m_database.path() +
                QStringLiteral(" can be written again: alerts are accepted."));
        Q_EMIT healthChanged(true, QString());
    }
    return stored;
}

} // namespace osprel
