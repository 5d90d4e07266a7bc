// The ticket schedule where it can go wrong: the due moments of repeats and escalation, the repeat limit, a rhythm
// that holds when a repeat is sent late, no burst after a long stop, nothing due once acknowledged, and a schedule
// that continues from the database after a restart. Also the codes and the names people type.

#include "Database.h"
#include "Log.h"
#include "RunError.h"
#include "TicketCode.h"
#include "TicketDesk.h"
#include "TicketSchedule.h"
#include "TicketStore.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

Q_DECLARE_METATYPE(osprel::TicketRule)

namespace {
const QDateTime t0(QDate(2026, 11, 23), QTime(10, 0));

QDateTime at(int minutes, int seconds = 0)
{
    return t0.addSecs(minutes * 60 + seconds);
}

TicketRule rule(int every, int times, int escalate)
{
    return TicketRule{true, qint16(every), qint16(times), qint16(escalate)};
}
} // namespace

class TestTicketSchedule : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void repeatsAndEscalation_data()
    {
        QTest::addColumn<TicketRule>("rule");
        QTest::addColumn<QList<int>>("repeatsAt"); // minutes after opening
        QTest::addColumn<int>("escalatesAt");      // -1: never
        QTest::newRow("every 2, three times, escalate at 5") << rule(2, 3, 5) << QList<int>{2, 4, 6} << 5;
        QTest::newRow("never repeated") << rule(0, 3, 5) << QList<int>{} << 5;
        QTest::newRow("zero times") << rule(2, 0, 0) << QList<int>{} << -1;
        QTest::newRow("once") << rule(10, 1, 0) << QList<int>{10} << -1;
        QTest::newRow("numbers out of range are bounded")
            << TicketRule{true, -5, 1000, 20000} << QList<int>{} << int(TicketRule::kMaxMinutes);
    }
    void repeatsAndEscalation()
    {
        QFETCH(TicketRule, rule);
        QFETCH(QList<int>, repeatsAt);
        QFETCH(int, escalatesAt);
        Ticket t = openTicket(QStringLiteral("1234-AB"), rule, t0);
        QList<int> repeated;
        int escalated = -1;
        // A tick every 20 seconds for eight days: each due moment is taken once, on its first tick.
        for (int s = 0; s <= 8 * 24 * 3600; s += 20) {
            const QDateTime now = t0.addSecs(s);
            if (repeatDue(t, now)) {
                repeated.append(s / 60);
                noteRepeat(t, now);
            }
            if (escalationIsDue(t, now)) {
                QCOMPARE(escalated, -1);
                escalated = s / 60;
                noteEscalation(t, now);
            }
        }
        QCOMPARE(repeated, repeatsAt);
        QCOMPARE(escalated, escalatesAt);
        QCOMPARE(t.repeats, int(repeatsAt.size()));
        QVERIFY(!t.nextRepeat.isValid());
    }

    void lateRepeatKeepsTheRhythmAndALongStopSendsNoBurst()
    {
        Ticket t = openTicket(QStringLiteral("1234-AB"), rule(2, 5, 0), t0);
        // Sent 30 s late: the next is still due at minute 4, not 4:30.
        QVERIFY(repeatDue(t, at(2, 30)));
        noteRepeat(t, at(2, 30));
        QCOMPARE(t.nextRepeat, at(4));
        QVERIFY(!repeatDue(t, at(3, 59)));
        // The server was down from minute 3 to minute 11: one repeat now, the next one interval later.
        QVERIFY(repeatDue(t, at(11)));
        noteRepeat(t, at(11));
        QCOMPARE(t.repeats, 2);
        QCOMPARE(t.nextRepeat, at(13));
        QVERIFY(!repeatDue(t, at(11, 20)));
    }

    void acknowledgedOrClearedIsDueForNothing()
    {
        for (TicketState state : {TicketState::Acknowledged, TicketState::Cleared}) {
            Ticket t = openTicket(QStringLiteral("1234-AB"), rule(2, 3, 5), t0);
            t.state = state;
            QVERIFY(!repeatDue(t, at(60)));
            QVERIFY(!escalationIsDue(t, at(60)));
        }
    }

    // Stored after one repeat and read back by a new program: the count and the next moment are those stored, so
    // the schedule goes on at minute 4 and ends after the third repeat; the escalation is still to come.
    void restartContinuesTheSchedule()
    {
        QTemporaryDir dir;
        Log log(dir.path());
        {
            Database db;
            db.DBInitADO(dir.path());
            Ticket t = openTicket(QStringLiteral("4821-QX"), rule(2, 3, 5), t0);
            t.chamberName = QStringLiteral("Chamber 4");
            t.category = QStringLiteral("CHAMBER_ALARM");
            insertTicket(db, t);
            noteRepeat(t, at(2));
            saveTicketProgress(db, t);
            Ticket done = openTicket(QStringLiteral("1111-AA"), rule(2, 3, 5), t0);
            insertTicket(db, done);
            done.state = TicketState::Cleared;
            saveTicketProgress(db, done);
        }
        Database db;
        db.DBInitADO(dir.path());
        const QList<Ticket> active = loadActiveTickets(db);
        QCOMPARE(active.size(), 1); // the cleared one stays in the table, not on the list
        Ticket t = active.first();
        QCOMPARE(t.code, QStringLiteral("4821-QX"));
        QCOMPARE(t.chamberName, QStringLiteral("Chamber 4"));
        QCOMPARE(t.repeats, 1);
        QCOMPARE(t.nextRepeat, at(4));
        QCOMPARE(escalationDue(t), at(5));
        QVERIFY(!repeatDue(t, at(3, 59)));
        QVERIFY(repeatDue(t, at(4)));
        noteRepeat(t, at(4));
        noteRepeat(t, at(6));
        QCOMPARE(t.repeats, 3);
        QVERIFY(!repeatDue(t, at(60)));
        QVERIFY(escalationIsDue(t, at(5)));
    }

    void codesAndTypedText()
    {
        QSet<QString> seen;
        const QString code = newTicketCode([&](const QString &c) { return seen.contains(c); });
        QCOMPARE(normalTicketCode(code), code);
        QVERIFY(!code.contains(u'I') && !code.contains(u'O'));
        QCOMPARE(normalTicketCode(QStringLiteral("  4821-qx ")), QStringLiteral("4821-QX"));
        for (const char *bad :
             {"", "4821QX", "4821-Q", "48215-QX", "4821-Q1", "'; DROP TABLE Tickets; --", "４８２１-QX"})
            QVERIFY2(normalTicketCode(QString::fromUtf8(bad)).isEmpty(), bad);
        // A space where every code is taken ends in a reported error, not a loop.
        QVERIFY_THROWS_EXCEPTION(RunError, newTicketCode([](const QString &) { return true; }));

        QCOMPARE(cleanTicketText(QStringLiteral("  Lan\r\nNguyen|night\t"), 80), QStringLiteral("Lan Nguyen/night"));
        QCOMPARE(cleanTicketText(QString(600, u'x'), 500).size(), 500);
        // A cut between the halves of a surrogate pair drops the half.
        const QString emoji = QString(3, u'a') + QString::fromUtf8("\xF0\x9F\x94\xA5");
        QCOMPARE(cleanTicketText(emoji, 4), QStringLiteral("aaa"));
    }
};

QTEST_GUILESS_MAIN(TestTicketSchedule)
#include "tst_ticket_schedule.moc"
