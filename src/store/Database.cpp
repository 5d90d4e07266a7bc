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

namespace osprel {

Database::Database() : m_connectionName(QStringLiteral("osprel-") + QUuid::createUuid().toString(QUuid::WithoutBraces))
{
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
        m_path = folder + u'/' + QLatin1String(kFileName);
        m_newerFileText.clear();
        const QFileInfo info(m_path);
        // An empty file is what an interrupted first start leaves: it is made like a missing one.
        const bool existed = info.exists() && info.size() > 0;
        if (!info.exists())
            createPrivateFile(m_path);
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
        if (!database.isValid())
            raise(Err::ProviderError, QStringLiteral("Provider cannot be found. It may not be properly installed."));
        database.setDatabaseName(m_path);
        // A file whose owner may not write it is read-only, for every user: it is opened for reading only.
        bool readOnly = existed && !(QFileInfo(m_path).permissions() & QFileDevice::WriteOwner);
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
        probe.exec(QStringLiteral("PRAGMA synchronous=NORMAL"));
        probe.exec(QStringLiteral("PRAGMA busy_timeout=2000"));
        if (!existed) {
            // Every change is committed row by row; the write-ahead log keeps that cheap. It is set once, when the
            // file is made: an existing file is never rewritten just by opening it.
            probe.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
            probe.finish();
            try {
                createSchema(database);
            } catch (...) {
                // Only a file this call made is removed: nothing that was stored before is touched.
                database.close();
                QFile::remove(m_path);
                throw;
            }
        }
        probe.finish();
        m_open = true;
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
    m_open = false;
    QSqlDatabase::database(m_connectionName, false).close();
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
