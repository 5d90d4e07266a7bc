// The server with a database file it cannot use: it starts, logs each failing procedure in the fixed form, keeps
// taking alerts, and leaves the file as it found it. Files of older and newer versions, and the mode of a new file.

#include "Database.h"
#include "Dispatcher.h"
#include "EmailFaxServer.h"
#include "Globals.h"
#include "HeadlessWindow.h"
#include "Log.h"
#include "Migrations.h"
#include "Schema.h"
#include "clsAlertCls.h"

#include <QCryptographicHash>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QtTest>
#include <sys/stat.h>

using namespace osprel;

namespace {
// The column names of every table, read without the server's help.
QMap<QString, QStringList> tableColumns(const QString &path)
{
    QMap<QString, QStringList> columns;
    {
        QSqlDatabase raw = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("columns"));
        raw.setDatabaseName(path);
        raw.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (raw.open()) {
            for (const QString &table : raw.tables())
                for (int i = 0; i < raw.record(table).count(); ++i)
                    columns[table].append(raw.record(table).fieldName(i));
        }
        raw.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("columns"));
    return columns;
}

// Every row of every table, as text, read without the server's help. With `columnsOf`, a table named there is read in
// those columns only: a later version may give a table a new column, and the rows must keep every value they had.
QMap<QString, QStringList> dumpTables(const QString &path, const QMap<QString, QStringList> &columnsOf = {})
{
    QMap<QString, QStringList> tables;
    {
        QSqlDatabase raw = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("dump"));
        raw.setDatabaseName(path);
        raw.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (raw.open()) {
            QSqlQuery names(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"), raw);
            while (names.next()) {
                const QString table = names.value(0).toString();
                const QString columns =
                    columnsOf.contains(table) ? columnsOf.value(table).join(QStringLiteral(", ")) : QStringLiteral("*");
                QSqlQuery rows(QStringLiteral("SELECT ") + columns + QStringLiteral(" FROM ") + table +
                                   QStringLiteral(" ORDER BY rowid"),
                               raw);
                QStringList &lines = tables[table];
                while (rows.next()) {
                    QStringList values;
                    for (int i = 0; i < rows.record().count(); ++i)
                        values << (rows.isNull(i) ? QStringLiteral("<null>") : rows.value(i).toString());
                    lines << values.join(u'|');
                }
            }
        }
        raw.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("dump"));
    return tables;
}

QByteArray digest(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256)
                                          : QByteArray();
}
// Process-wide state as a new process has it, over folder.
const QString &fresh(const QString &folder)
{
    resetGlobals();
    g.gstrAppPath = folder;
    return folder;
}

// The whole server loaded over a data folder, as at start-up, without a bus.
struct Loaded
{
    explicit Loaded(const QString &folder) : log(fresh(folder)), server(log, lists, window.ports())
    {
        log.writeStartRecord(QString());
        server.Form_Load();
    }
    Log log;
    FormLists lists;
    HeadlessWindow window;
    EmailFaxServer server;
};
} // namespace

class TestDatabaseFiles : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void unusableFiles_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QStringList>("failing"); // procedures that must log their failure
        const QStringList everyLoad = {"DBInitADO", "DBInit", "DBInitAlarmCatSetup", "DBInitAlarmPriSetup",
                                       "InitLables"};
        QTest::newRow("foreign") << "foreign" << everyLoad;
        QTest::newRow("corrupt") << "corrupt" << QStringList{"DBInit", "DBInitAlarmCatSetup", "DBInitAlarmPriSetup"};
        QTest::newRow("read-only") << "read-only" << QStringList{};
    }
    void unusableFiles()
    {
        QFETCH(QString, kind);
        QFETCH(QStringList, failing);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("EMAILFAX.MDE"));
        prepare(kind, dir.path(), path);
        const QByteArray before = digest(path);

        Loaded loaded(dir.path());
        Log &log = loaded.log;
        EmailFaxServer &server = loaded.server;

        const QStringList lines = log.lstStatus()->stringList();
        for (const QString &procedure : failing) {
            const QString tag = QStringLiteral(" (") + procedure + QStringLiteral(")");
            QVERIFY2(std::any_of(lines.begin(), lines.end(),
                                 [&](const QString &l) {
                                     return l.startsWith(QLatin1String("ErrorHandler ")) && l.endsWith(tag);
                                 }),
                     qPrintable(procedure + QStringLiteral(" not logged in: ") + lines.join(u'\n')));
        }
        if (kind == QLatin1String("foreign"))
            QVERIFY(lines.contains(QStringLiteral("ErrorHandler -2147467259: Unrecognized database format '") + path +
                                   QStringLiteral("'. (DBInitADO)")));

        // Nothing is accepted that could not be kept: alerts are refused, and the reason is logged once.
        clsAlertCls chamber;
        QVERIFY(chamber.ServerCmd(QStringLiteral("V"), 1, QString()));
        for (int i = 0; i < 3; ++i)
            QVERIFY(!chamber.SendAlert(QStringLiteral("1|2;C;d;On;c;m;s;l|9;msg|1;2;3;4|5;6;7;8|5005|t")));
        QCOMPARE(server.lists().lvwMsgQue.count(), 0);
        QVERIFY(g.gblnStoreFailed);
        const QStringList after = log.lstStatus()->stringList();
        QCOMPARE(std::count_if(after.begin(), after.end(),
                               [](const QString &l) { return l.contains(QLatin1String(" cannot be written (")); }),
                 1);

        g.gblnServerLinked = false;
        server.unload(EmailFaxServer::ByCode);
        QCOMPARE(digest(path), before);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    }

    // A file of no bytes is a database not yet made. A file made read-only while the server runs refuses alerts
    // until it can be written again; what was accepted is stored once and comes back, in order, after a restart.
    void zeroByteReadOnlyWritableRestart()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("EMAILFAX.MDE"));
        QFile empty(path);
        QVERIFY(empty.open(QIODevice::WriteOnly));
        empty.close();
        const auto alert = [](int id) { return QStringLiteral("%1|2;C;d;On;c;m;s;l|9;msg|1;2;3;4|5;6;7;8|5005|t").arg(id); };
        {
            Loaded loaded(dir.path());
            EmailFaxServer &server = loaded.server;
            QVERIFY(QFileInfo(path).size() > 0);
            clsAlertCls chamber;
            QVERIFY(chamber.ServerCmd(QStringLiteral("V"), 1, QString()));
            QVERIFY(chamber.SendAlert(alert(1)));
            QVERIFY(server.database().commitBatch());

            QFile::setPermissions(path, QFile::ReadOwner);
            QVERIFY(!chamber.SendAlert(alert(2)));
            QVERIFY(!chamber.SendAlert(alert(3)));
            QVERIFY(g.gblnStoreFailed);
            QVERIFY(!server.journal().resync());

            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
            QVERIFY(server.journal().resync());
            QVERIFY(!g.gblnStoreFailed);
            QVERIFY(chamber.SendAlert(alert(4)));
            QCOMPARE(server.lists().lvwMsgQue.count(), 2);
            QCOMPARE(server.database().run(QStringLiteral("SELECT count(*) FROM QueueRows")).next(), true);
            g.gblnServerLinked = false;
            server.unload(EmailFaxServer::ByCode);
        }
        Loaded loaded(dir.path());
        Log &log = loaded.log;
        FormLists &lists = loaded.lists;
        EmailFaxServer &server = loaded.server;
        QCOMPARE(lists.lvwMsgQue.count(), 2);
        QCOMPARE(lists.lvwMsgQue.text(1, 2), alert(1));
        QCOMPARE(lists.lvwMsgQue.text(2, 2), alert(4));
        QVERIFY(log.lstStatus()->stringList().contains(
            QStringLiteral("Restored 2 alerts, 0 e-mails and 0 fax from the last run")));
        QSqlQuery rows = server.database().run(QStringLiteral("SELECT count(*) FROM QueueRows"));
        QVERIFY(rows.next());
        QCOMPARE(rows.value(0).toInt(), 2);
        g.gblnServerLinked = false;
        server.unload(EmailFaxServer::ByCode);
    }

    // A file from before versions were kept gains the current version in place and keeps every row; a file of a newer
    // program is left at its version.
    void olderAndNewerVersions()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("EMAILFAX.MDE"));
        for (int version : {0, currentSchemaVersion() + 5}) {
            QFile::remove(path);
            {
                QSqlDatabase classic = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("classic"));
                classic.setDatabaseName(path);
                QVERIFY(classic.open());
                createSchema(classic);
                QSqlQuery query(classic);
                QVERIFY(query.exec(QStringLiteral("INSERT INTO Contacts (LastName, FirstName) VALUES ('Old', 'Row')")));
                QVERIFY(query.exec(QStringLiteral("PRAGMA user_version = ") + QString::number(version)));
                classic.close();
            }
            QSqlDatabase::removeDatabase(QStringLiteral("classic"));

            Log log(dir.path());
            Database database;
            database.DBInitADO(dir.path());
            QVERIFY(database.isOpen());
            QSqlQuery rows = database.run(QStringLiteral("SELECT count(*) FROM Contacts WHERE LastName = 'Old'"));
            QVERIFY(rows.next());
            QCOMPARE(rows.value(0).toInt(), 1);
            QSqlQuery stored = database.run(QStringLiteral("PRAGMA user_version"));
            QVERIFY(stored.next());
            QCOMPARE(stored.value(0).toInt(), version == 0 ? currentSchemaVersion() : version);
        }
    }

    // A database made by the first version that kept versions (tests/store/fixtures, written by make-db-fixture)
    // opens, gains the current version, keeps every row, and the window shows what it holds.
    void fixtureOfAnEarlierVersionOpensWithEveryRow()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("EMAILFAX.MDE"));
        QVERIFY(QFile::copy(QStringLiteral(OSPREL_SOURCE_DIR "/tests/store/fixtures/EMAILFAX-v1.MDE"), path));
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner));
        const QMap<QString, QStringList> before = dumpTables(path);
        QCOMPARE(before.value(QStringLiteral("Contacts")).size(), 3);
        const QMap<QString, QStringList> columnsBefore = tableColumns(path);

        resetGlobals();
        g.gstrAppPath = dir.path();
        Log log(dir.path());
        FormLists lists;
        HeadlessWindow window;
        {
            EmailFaxServer server(log, lists, window.ports());
            server.Form_Load();
            QVERIFY2(log.functErr().isEmpty(), qPrintable(log.lstStatus()->stringList().join(u'\n')));
            QVERIFY(server.database().newerFileText().isEmpty());
            QCOMPARE(lists.lvwMainContacts.count(), 3);
            // Each history in its own list, newest first.
            QCOMPARE(lists.lvwHist[0].count(), 2);
            QCOMPARE(lists.lvwHist[0].text(1, 1), QStringLiteral("11/21/2026  09:02:47"));
            QCOMPARE(lists.lvwHist[1].count(), 1);
            QCOMPARE(window.settings.txtMailServer, QStringLiteral("mail.lab.example:2525"));
            g.gblnServerLinked = false;
            server.unload(EmailFaxServer::ByCode);
        }
        const QMap<QString, QStringList> after = dumpTables(path, columnsBefore);
        for (auto table = before.begin(); table != before.end(); ++table)
            QCOMPARE(after.value(table.key()), table.value());
        QSqlDatabase raw = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("version"));
        raw.setDatabaseName(path);
        QVERIFY(raw.open());
        QSqlQuery version(QStringLiteral("PRAGMA user_version"), raw);
        QVERIFY(version.next());
        QCOMPARE(version.value(0).toInt(), currentSchemaVersion());
        raw.close();
        raw = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("version"));
    }

    // A file written by a newer program is read but never written: the log and the window say why.
    void newerFileOpensReadOnly()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("EMAILFAX.MDE"));
        {
            Database fresh;
            fresh.DBInitADO(dir.path());
            fresh.run(QStringLiteral("INSERT INTO Contacts (LastName, FirstName) VALUES ('Keep', 'Me')"));
            fresh.run(QStringLiteral("PRAGMA user_version = ") + QString::number(currentSchemaVersion() + 1));
        }
        const QMap<QString, QStringList> before = dumpTables(path);

        resetGlobals();
        g.gstrAppPath = dir.path();
        Log log(dir.path());
        FormLists lists;
        HeadlessWindow window;
        EmailFaxServer server(log, lists, window.ports());
        server.Form_Load();
        QCOMPARE(lists.lvwMainContacts.count(), 1);
        const QString text = server.database().newerFileText();
        QVERIFY(text.contains(QLatin1String("newer version")));
        QVERIFY(text.contains(QLatin1String("read-only")));
        QVERIFY(log.lstStatus()->stringList().contains(text));
        QCOMPARE(window.panelMessage, text);
        QCOMPARE(window.messages, QStringList{QStringLiteral("Database Read-Only|") + text});
        bool refused = false;
        try {
            server.database().run(QStringLiteral("INSERT INTO Contacts (LastName) VALUES ('New')"));
        } catch (const std::exception &) {
            refused = true;
        }
        QVERIFY(refused);
        g.gblnServerLinked = false;
        server.unload(EmailFaxServer::ByCode);
        QCOMPARE(dumpTables(path), before);
    }

    // The file holds names, addresses and fax numbers: only its owner may read it, whatever the umask.
    void newFileIsReadableByItsOwnerOnly()
    {
        QTemporaryDir dir;
        const mode_t previous = ::umask(0);
        {
            Log log(dir.path());
            Database fresh;
            fresh.DBInitADO(dir.path());
            QVERIFY(fresh.isOpen());
            fresh.run(QStringLiteral("INSERT INTO Contacts (LastName, FirstName) VALUES ('A', 'B')"));
            for (const char *name : {"EMAILFAX.MDE", "EMAILFAX.MDE-wal"}) {
                struct stat info = {};
                QCOMPARE(::stat(QFile::encodeName(dir.filePath(QLatin1String(name))).constData(), &info), 0);
                QCOMPARE(info.st_mode & 0777, mode_t(0600));
            }
        }
        ::umask(previous);
    }

private:
    void prepare(const QString &kind, const QString &folder, const QString &path)
    {
        if (kind == QLatin1String("foreign")) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(QByteArray("\x00\x01\x00\x00Standard Jet DB\x00", 20) + QByteArray(4096, '\x5a'));
            return;
        }
        {
            Database fresh;
            fresh.DBInitADO(folder);
            fresh.run(QStringLiteral("INSERT INTO Contacts (LastName, FirstName) VALUES (?, ?)"),
                      {QStringLiteral("Keep"), QStringLiteral("Me")});
            // A held alarm of a category the chamber sends on: High holds nothing, so level 1 is used.
            fresh.run(QStringLiteral("UPDATE SetupPriority SET PLevelID = '1'"));
        }
        if (kind == QLatin1String("corrupt")) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::ReadWrite));
            file.seek(4096); // page 1 (the schema) stays; every table page after it is garbage
            file.write(QByteArray(int(file.size() - 4096), '\xff'));
        } else {
            QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
        }
    }
};

QTEST_MAIN(TestDatabaseFiles)
#include "tst_database_files.moc"
