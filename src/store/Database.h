#pragma once
// The one database connection of the server: EMAILFAX.MDE in the data folder, a SQLite file, opened once at start
// and created with its whole schema and delivered rows when it is missing.

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QTimer>
#include <QVariantList>
#include <functional>
#include <memory>

namespace osprel {

class Database
{
public:
    static constexpr const char *kFileName = "EMAILFAX.MDE";
    // How long a batch nobody waits for stays open for more changes (real milliseconds, not scaled).
    static constexpr int kIdleCommitMs = 10;

    Database();
    ~Database();
    Database(const Database &) = delete;
    Database &operator=(const Database &) = delete;

    // Opens the file in folder (creating it with the schema when missing). Returns true, as the procedure always
    // has; a file that cannot be opened or is not a database is logged by name and leaves no connection.
    bool DBInitADO(const QString &folder);
    void close();

    bool isOpen() const { return m_open; }
    // The connection, for statements prepared once and run many times; opening() changes whenever the file is
    // opened again, after which such statements must be prepared anew.
    QSqlDatabase connection() const { return QSqlDatabase::database(m_connectionName, false); }
    int opening() const { return m_opening; }
    bool isReadOnly() const { return m_readOnly; }
    // Not empty when the file was written by a newer version of the program and is therefore open read-only: the
    // text that says so (it is in the log already; the window shows it too).
    const QString &newerFileText() const { return m_newerFileText; }
    const QString &path() const { return m_path; }
    // Whether the file may be written now: open for writing, and its owner may still write it (a file made
    // read-only while the server runs stays writable through the open connection; its mode says what is meant).
    bool writable() const;
    // A file opened read-only that has become writable is opened again for writing; true when it now is.
    bool reopenIfWritable();

    // Group commit. Changes made within one turn of the event loop share one transaction, committed (with one flush
    // to disk) when control returns to the loop; while nobody waits for it, a batch stays open kIdleCommitMs for
    // more changes. beginBatch() opens it, if it is not open yet; statements run in
    // the meantime by anyone join it. whenCommitted() calls back after that commit with its outcome (true at once
    // when nothing is open). commitBatch() commits now (shutdown, tests); it returns false when the commit failed,
    // in which case everything of the batch is rolled back.
    void beginBatch() const;
    bool inBatch() const { return m_batch->open; }
    void whenCommitted(std::function<void(bool)> callback) const;
    // Brings the open batch's commit forward to the end of the current turn, when nobody waits for it but it should
    // not stay open for more changes (a delivery's outcome).
    void commitSoon() const;
    bool commitBatch() const;
    // Told of every failed commit, with the reason, after the batch was rolled back.
    void setCommitFailureHandler(std::function<void(const QString &)> handler)
    {
        m_batch->onFailure = std::move(handler);
    }

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

    struct Batch
    {
        bool open = false;
        QTimer commit;
        QList<std::function<void(bool)>> waiting;
        std::function<void(const QString &)> onFailure;
    };

    QString m_connectionName;
    QString m_folder;
    QString m_path;
    bool m_open = false;
    int m_opening = 0;
    bool m_readOnly = false;
    std::unique_ptr<Batch> m_batch;
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
