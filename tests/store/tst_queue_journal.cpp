// The queues on disk: every change to a queue list is the same change to its stored rows, changes of one turn of
// the event loop share one commit, and a restart gives back the lists as they were.

#include "Database.h"
#include "FormLists.h"
#include "Log.h"
#include "QueueJournal.h"
#include "QueueRoutines.h"

#include <QSignalSpy>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

namespace {
QList<QStringList> rowsOf(const ListStore &list)
{
    QList<QStringList> rows;
    for (int i = 1; i <= list.count(); ++i)
        rows.append(list.row(i));
    return rows;
}
} // namespace

class TestQueueJournal : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void everyChangeIsStoredAndComesBack()
    {
        QTemporaryDir dir;
        Log log(dir.path());
        log.writeStartRecord(QString());
        QList<QStringList> incoming, email, fax;
        {
            Database db;
            db.DBInitADO(dir.path());
            FormLists lists;
            lists.InitColHeaders();
            QueueJournal journal(db, lists);
            QCOMPARE(journal.restore().total(), 0);
            journal.attach();

            for (int i = 1; i <= 4; ++i)
                lists.lvwMsgQue.add(QStringList{QString(), QStringLiteral("alert %1 with \"quotes\" and ü").arg(i)});
            lists.lvwMsgQue.remove(1);
            lists.lvwMsgQue.setText(2, 3, QStringLiteral("status"));
            lists.lvwMsgQue.insert(1, QStringList{QString(), QStringLiteral("first again")});
            lists.lvwMsgQue.insert(3, QStringList{QString(), QStringLiteral("in the middle")});
            lists.lvwSendEmailQue.add(QStringList{QStringLiteral("t"), QStringLiteral("mail")});
            lists.lvwSendEmailQue.setText(1, 5, QStringLiteral("2"));
            for (const char *name : {"Ann", "Bob", "Cy"})
                lists.lvwSendFaxQue.add(QStringList{QStringLiteral("t"), QString::fromLatin1(name)});
            LVWSendFirstFaxQueueToLast(lists);
            lists.lvwSendFaxQue.remove(1);
            QVERIFY(journal.healthy());
            QVERIFY(journal.isStored(lists.lvwMsgQue, 3));

            // One turn of the event loop, one commit; whoever waits for it hears once.
            QVERIFY(db.inBatch());
            bool stored = false;
            db.whenCommitted([&](bool ok) { stored = ok; });
            QTRY_VERIFY(stored);
            QVERIFY(!db.inBatch());

            lists.lvwSendEmailQue.add(QStringList{QStringLiteral("t"), QStringLiteral("gone")});
            lists.lvwSendEmailQue.remove(2);
            incoming = rowsOf(lists.lvwMsgQue);
            email = rowsOf(lists.lvwSendEmailQue);
            fax = rowsOf(lists.lvwSendFaxQue);
            QCOMPARE(fax.at(2).at(1), QStringLiteral("Ann")); // the head went to the end
            journal.detach();
            lists.lvwMsgQue.clear(); // after detach, emptying the window's lists leaves the stored rows alone
            db.close();
        }
        Database db;
        db.DBInitADO(dir.path());
        FormLists lists;
        lists.InitColHeaders();
        QueueJournal journal(db, lists);
        const QueueJournal::Counts counts = journal.restore();
        QCOMPARE(counts.alerts, 5);
        QCOMPARE(counts.emails, 1);
        QCOMPARE(counts.faxes, 3);
        QCOMPARE(rowsOf(lists.lvwMsgQue), incoming);
        QCOMPARE(rowsOf(lists.lvwSendEmailQue), email);
        QCOMPARE(rowsOf(lists.lvwSendFaxQue), fax);
        QVERIFY(log.lstStatus()->stringList().contains(
            QStringLiteral("Restored 5 alerts, 1 e-mails and 3 fax from the last run")));

        // Restored rows keep their identity: changing and removing them reaches the same stored rows.
        journal.attach();
        lists.lvwMsgQue.remove(1);
        lists.lvwSendFaxQue.setText(1, 3, QStringLiteral("x"));
        QVERIFY(db.commitBatch());
        QSqlQuery rows = db.run(QStringLiteral("SELECT count(*) FROM QueueRows"));
        QVERIFY(rows.next());
        QCOMPARE(rows.value(0).toInt(), 8);
    }
};

QTEST_GUILESS_MAIN(TestQueueJournal)
#include "tst_queue_journal.moc"
