#include "Database.h"

#include "ErrorReport.h"
#include "Log.h"
#include "Migrations.h"
#include "RunError.h"
#include "Schema.h"

#include <QFile>
#include <QFileInfo>
#include <QSqlError>
#include <QUuid>
#include <QVariant>
#include <utility>

namespace osprel {

Database::Database()
    : m_connectionName(QStringLiteral("osprel-") + QUuid::createUuid().toString(QUuid::WithoutBraces)),
      m_batch(std::make_unique<Batch>())
{
    m_batch->commit.setSingleShot(true);
    m_batch->commit.callOnTimeout([this] { commitBatch(); });
}

Database::~Database()
{
    close();
    QSqlDatabase::removeDatabase(m_connectionName);
}

bool Database::DBInitADO(const QString &folder)
{
    guarded(QStringLiteral("DBInitADO"), [&] {
        if (folder.isEmpty())
            raise(Err::PathNotFound);
        m_folder = folder;
        m_path = folder + u'/' + QLatin1String(kFileName);
        m_newerFileText.clear();
        // A file of no bytes holds no database (an interrupted first start leaves one): it is made like a missing
        // one, with the schema created in it.
        const QFileInfo file(m_path);
        const bool present = file.exists();
        const bool existed = present && file.size() > 0;
        if (!present)
            createPrivateFile(m_path);
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
        if (!database.isValid())
            raise(Err::ProviderError, QStringLiteral("Provider cannot be found. It may not be properly installed."));
        database.setDatabaseName(m_path);
        // A file whose owner may not write it is read-only, for every user: it is opened for reading only.
        bool readOnly = present && !(file.permissions() & QFileDevice::WriteOwner);
        if (readOnly)
            database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (!database.open())
            raise(Err::ProviderError,
                  QStringLiteral("Could not open '") + m_path + QStringLiteral("': ") + database.lastError().text());
        // A file that is not a database opens, and fails on its first read.
        QSqlQuery probe(database);
        if (!probe.exec(QStringLiteral("SELECT count(*) FROM sqlite_master"))) {
            database.close();
            raise(Err::ProviderError, QStringLiteral("Unrecognized database format '") + m_path + QStringLiteral("'."));
        }
        if (existed && schemaVersion(database) > currentSchemaVersion()) {
            // Written by a newer program: this one reads it, but writing could break what that program stored.
            m_newerFileText = newerFileText(m_path, schemaVersion(database));
            if (!readOnly) {
                probe.finish();
                database.close();
                database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
                if (!database.open())
                    raise(Err::ProviderError, QStringLiteral("Could not open '") + m_path + QStringLiteral("': ") +
                                                  database.lastError().text());
                readOnly = true;
            }
            DumpStr(m_newerFileText);
        }
        // A commit reaches the disk before it is reported: an accepted alert survives a power cut.
        probe.exec(QStringLiteral("PRAGMA synchronous=FULL"));
        probe.exec(QStringLiteral("PRAGMA busy_timeout=2000"));
        if (!existed && !readOnly) {
            // Changes are committed once per turn of the event loop; the write-ahead log keeps each commit to one
            // flush. It is set when the file is made, or when an older file is upgraded.
            probe.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
            probe.finish();
            try {
                createSchema(database);
            } catch (...) {
                // Only a file this call made is removed: nothing that was stored before is touched.
                database.close();
                if (!present)
                    QFile::remove(m_path);
                throw;
            }
        }
        probe.finish();
        m_open = true;
        ++m_opening;
        m_readOnly = readOnly;
        if (!readOnly)
            upgrade(database, existed);
    });
    return true;
}

// The file holds names, addresses and fax numbers: it is made readable by its owner only, before the first byte is
// written. SQLite gives its journal files the mode of the database file.
void Database::createPrivateFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFileDevice::ReadOwner | QFileDevice::WriteOwner))
        raise(Err::PathFileAccessError,
              QStringLiteral("Could not create '") + path + QStringLiteral("': ") + file.errorString());
}

QString Database::newerFileText(const QString &path, int version)
{
    return QStringLiteral("Database ") + path +
           QStringLiteral(" was written by a newer version of this program (schema ") + QString::number(version) +
           QStringLiteral(", this program knows up to ") + QString::number(currentSchemaVersion()) +
           QStringLiteral("). It is opened read-only: changes to recipients and settings are not stored, and alarms "
                          "held for summary reports are not kept. Install the newer version again, or restore a "
                          "copy of the file made by this one.");
}

// A file of an older version gains what this program adds; a failed upgrade leaves it as it was, and the server
// works on with the tables it has.
void Database::upgrade(QSqlDatabase &database, bool existed)
{
    guarded(QStringLiteral("DBUpgrade"), [&] {
        const int from = schemaVersion(database);
        if (from < currentSchemaVersion() && existed) {
            QSqlQuery wal(database);
            wal.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
        }
        migrate(database);
        if (existed && from < currentSchemaVersion())
            DumpStr(QStringLiteral("Database ") + m_path + QStringLiteral(" upgraded from version ") +
                    QString::number(from) + QStringLiteral(" to ") + QString::number(currentSchemaVersion()) +
                    QStringLiteral("."));
    });
}

void Database::close()
{
    if (!m_open)
        return;
    commitBatch();
    m_open = false;
    QSqlDatabase::database(m_connectionName, false).close();
}

bool Database::writable() const
{
    return m_open && !m_readOnly && (QFileInfo(m_path).permissions() & QFileDevice::WriteOwner);
}

bool Database::reopenIfWritable()
{
    if (m_open && !m_readOnly)
        return true;
    // Only a file that opened for reading is tried again; one that did not open at all stays as it is.
    if (!m_open || !(QFileInfo(m_path).permissions() & QFileDevice::WriteOwner))
        return false;
    close();
    QSqlDatabase::removeDatabase(m_connectionName);
    DBInitADO(m_folder);
    return m_open && !m_readOnly;
}

void Database::beginBatch() const
{
    if (m_batch->open || !m_open)
        return;
    QSqlDatabase database = QSqlDatabase::database(m_connectionName, false);
    if (!database.transaction())
        raise(Err::ProviderError, database.lastError().text());
    m_batch->open = true;
    // Nobody waits for this batch yet: changes of the next few milliseconds (dispatch, delivery) may join it. A
    // caller that waits brings the commit forward to the end of the current turn.
    m_batch->commit.start(kIdleCommitMs);
}

void Database::whenCommitted(std::function<void(bool)> callback) const
{
    if (!m_batch->open) {
        callback(true);
        return;
    }
    m_batch->waiting.append(std::move(callback));
    // OSPREL_GROUP_COMMIT=0 commits at once, one flush per caller: for measuring what group commit saves.
    static const bool grouped = qEnvironmentVariable("OSPREL_GROUP_COMMIT") != QLatin1String("0");
    if (!grouped)
        commitBatch();
    else
        commitSoon();
}

void Database::commitSoon() const
{
    if (m_batch->open && m_batch->commit.interval() != 0)
        m_batch->commit.start(0);
}

bool Database::commitBatch() const
{
    m_batch->commit.stop();
    if (!m_batch->open)
        return true;
    m_batch->open = false;
    QSqlDatabase database = QSqlDatabase::database(m_connectionName, false);
    const bool committed = database.commit();
    QString reason;
    if (!committed) {
        reason = database.lastError().text();
        database.rollback();
    }
    const auto waiting = std::exchange(m_batch->waiting, {});
    for (const auto &callback : waiting)
        callback(committed);
    if (!committed && m_batch->onFailure)
        m_batch->onFailure(reason);
    return committed;
}

QSqlQuery Database::run(const QString &sql, const QVariantList &values) const
{
    if (!m_open)
        raise(Err::ConnectionClosed);
    QSqlQuery query(QSqlDatabase::database(m_connectionName, false));
    query.setForwardOnly(true);
    execBound(query, sql, values);
    return query;
}

qint64 Database::firstRowId(const QString &table) const
{
    QSqlQuery row = run(QStringLiteral("SELECT rowid FROM ") + table + QStringLiteral(" ORDER BY rowid LIMIT 1"));
    if (!row.next())
        raise(Err::NoCurrentRecord);
    return row.value(0).toLongLong();
}

void inTransaction(QSqlDatabase &database, const std::function<void()> &work)
{
    if (!database.transaction())
        raise(Err::ProviderError, database.lastError().text());
    try {
        work();
    } catch (...) {
        database.rollback();
        throw;
    }
    if (!database.commit())
        raise(Err::ProviderError, database.lastError().text());
}

void execBound(QSqlQuery &query, const QString &sql, const QVariantList &values)
{
    if (!query.prepare(sql))
        raise(Err::ProviderError, query.lastError().text());
    for (const QVariant &value : values)
        query.addBindValue(value);
    if (!query.exec())
        raise(Err::ProviderError, query.lastError().text());
}

QString textOf(const QSqlQuery &query, const char *column)
{
    const QVariant value = query.value(QLatin1String(column));
    if (value.isNull())
        raise(Err::InvalidUseOfNull);
    return value.toString();
}

QString textOrEmpty(const QSqlQuery &query, const char *column)
{
    return query.value(QLatin1String(column)).toString();
}

} // namespace osprel
