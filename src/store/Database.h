#pragma once
// The one database connection of the server: EMAILFAX.MDE in the data folder, a SQLite file, opened once at start
// and created with its whole schema and delivered rows when it is missing.

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariantList>
#include <functional>

namespace osprel {

class Database
{
public:
    static constexpr const char *kFileName = "EMAILFAX.MDE";

    Database();
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    // Opens the file in folder (creating it with the schema when missing). Returns true, as the procedure always
    // has; a file that cannot be opened or is not a database is logged by name and leaves no connection.
    bool DBInitADO(const QString &folder);
    void close();

    bool isOpen() const { return m_open; }
    // Not empty when the file was written by a newer version of the program and is therefore open read-only: the
    // text that says so (it is in the log already; the window shows it too).
    const QString &newerFileText() const { return m_newerFileText; }
    const QString &path() const { return m_path; }

    // Runs one statement with its values bound; raises a run-time error when there is no connection or the
    // statement fails. Values are always bound, never pasted into the text.
    QSqlQuery run(const QString &sql, const QVariantList &values = {}) const;

    // The rowid of the first row of a one-row settings table (SetupComm, SetupModem); raises No current record when
    // the table is empty.
    qint64 firstRowId(const QString &table) const;

private:
    void upgrade(QSqlDatabase &database, bool existed);
    static void createPrivateFile(const QString &path);
    static QString newerFileText(const QString &path, int version);

    QString m_connectionName;
    QString m_path;
    bool m_open = false;
    QString m_newerFileText;
};

// Runs work in one transaction: committed when it returns, rolled back (and the error raised again) when it raises.
void inTransaction(QSqlDatabase &database, const std::function<void()> &work);

// Prepares sql on query, binds the values and runs it; raises a run-time error when either step fails.
void execBound(QSqlQuery &query, const QString &sql, const QVariantList &values = {});

// A column's value as text; a null raises Invalid use of Null (94), as reading it into a string does.
QString textOf(const QSqlQuery &query, const char *column);
// The same, with null read as empty (columns that may be null).
QString textOrEmpty(const QSqlQuery &query, const char *column);

} // namespace osprel
