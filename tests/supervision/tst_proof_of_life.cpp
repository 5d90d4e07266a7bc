// The proof of life, end to end: the whole server in this process with aiosmtpd as its mail server, Python's
// http.server as the dead man's switch. The daily status goes once at its set time (injected clock) with the
// counts of what the test sent; the check URL is fetched at its interval and not while the database cannot be
// written.

#include "Clock.h"
#include "InProcessServer.h"
#include "ListStore.h"
#include "LocalSmtpServer.h"
#include "ProofOfLife.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

using namespace osprel;

namespace {
const QString kAlert = QStringLiteral("|4;Chamber 4;Walk-in;On;QLM V;T/H;Running;Yes|999;CH1 actual high|"
                                      "85;91;100;0|60;58;40;0|5005|9:55 pm");

QStringList dailyStatuses(const LocalSmtpServer &smtp)
{
    QStringList found;
    for (const QString &message : smtp.messages()) {
        if (message.contains(QLatin1String("Subject: Osprel EmailFax")) && message.contains(QLatin1String("daily status")))
            found.append(message);
    }
    return found;
}

// Python's http.server on a free loopback port; each request is one line on its standard error.
struct HttpServer
{
    explicit HttpServer(const QString &folder)
    {
        QFile ping(folder + QStringLiteral("/ping"));
        if (ping.open(QIODevice::WriteOnly))
            ping.write("ok\n");
        process.start(QStringLiteral("/usr/bin/python3"),
                      {QStringLiteral("-u"), QStringLiteral("-m"), QStringLiteral("http.server"), QStringLiteral("0"),
                       QStringLiteral("--bind"), QStringLiteral("127.0.0.1"), QStringLiteral("--directory"), folder});
    }
    ~HttpServer()
    {
        process.kill();
        process.waitForFinished(5000);
    }
    QString url()
    {
        static const QRegularExpression port(QStringLiteral("port (\\d+)"));
        const bool started = QTest::qWaitFor(
            [&] {
                out += process.readAllStandardOutput();
                return port.match(QString::fromUtf8(out)).hasMatch();
            },
            10000);
        if (!started)
            return QString();
        const QString number = port.match(QString::fromUtf8(out)).captured(1);
        return number.isEmpty() ? QString() : QStringLiteral("http://127.0.0.1:%1/ping").arg(number);
    }
    int fetches()
    {
        err += process.readAllStandardError();
        return int(err.count("GET /ping"));
    }
    QProcess process;
    QByteArray out, err;
};
} // namespace

class TestProofOfLife : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void cleanup() { Clock::setSource(nullptr); }

    void dailyStatusAtItsTimeWithTheCounts()
    {
        QDateTime now(QDate(2026, 11, 23), QTime(6, 50));
        Clock::setSource([&now] { return now; });
        LocalSmtpServer smtp;
        QString error;
        QVERIFY2(smtp.start(&error), qPrintable(error));
        InProcessServer fixture(0.01);
        QVERIFY2(fixture.start(
                     [&](Database &db) {
                         InProcessServer::mailToDuty(db, smtp.address());
                         db.run(QStringLiteral("INSERT INTO ProofOfLife (DailyStatus, DailyAt, DailyTo) "
                                               "VALUES (1, '07:00', 0)"));
                     },
                     &error),
                 qPrintable(error));
        QVERIFY(fixture.server().proofOfLife().settings().dailyStatus);
        QVERIFY(fixture.link());
        for (const char *id : {"201", "202", "203"})
            QVERIFY(fixture.sendAlert(QString::fromLatin1(id) + kAlert));
        QTRY_COMPARE_WITH_TIMEOUT(fixture.events(QStringLiteral("AlertStatus")).size(), 3, 15000);
        fixture.server().proofOfLife().dailyCheck();
        QVERIFY(dailyStatuses(smtp).isEmpty()); // not before its time

        now = QDateTime(QDate(2026, 11, 23), QTime(7, 0, 10));
        QTRY_COMPARE_WITH_TIMEOUT(dailyStatuses(smtp).size(), 1, 15000);
        const QString status = dailyStatuses(smtp).first();
        QVERIFY2(status.contains(QLatin1String("Alerts received:     3")), qPrintable(status));
        QVERIFY2(status.contains(QLatin1String("Notifications sent:  3 by e-mail, 0 by fax")), qPrintable(status));
        QVERIFY(status.contains(QLatin1String("Failed for good:     0 by e-mail, 0 by fax")));
        QVERIFY(status.contains(QLatin1String("Queues now: 0 incoming, 0 e-mail, 0 fax.")));
        QVERIFY(status.contains(QLatin1String("Oldest undelivered: none.")));

        // Once a day, not once per check; the next day's counts start again.
        for (int i = 0; i < 5; ++i)
            fixture.server().proofOfLife().dailyCheck();
        now = now.addSecs(3600);
        fixture.server().proofOfLife().dailyCheck();
        QTest::qWait(200);
        QCOMPARE(dailyStatuses(smtp).size(), 1);
        QVERIFY(fixture.sendAlert(QStringLiteral("204") + kAlert));
        QTRY_COMPARE_WITH_TIMEOUT(fixture.events(QStringLiteral("AlertStatus")).size(), 4, 15000);
        now = QDateTime(QDate(2026, 11, 24), QTime(7, 0, 5));
        QTRY_COMPARE_WITH_TIMEOUT(dailyStatuses(smtp).size(), 2, 15000);
        QVERIFY(dailyStatuses(smtp).last().contains(QLatin1String("Alerts received:     1")));
        QVERIFY(dailyStatuses(smtp).last().contains(QLatin1String("Since 11/23/2026  07:00:\n")));

        // The time it went is stored: a server started again the same day does not send it again; one that was
        // down at the next set time sends it when it is back, once.
        now = now.addSecs(600);
        // Restarted only once the server has recorded the delivery; before that, a restart sends it again.
        QTRY_VERIFY_WITH_TIMEOUT(fixture.server().lists().lvwSendEmailQue.isEmpty(), 15000);
        fixture.restart();
        fixture.server().proofOfLife().dailyCheck();
        QTest::qWait(200);
        QCOMPARE(dailyStatuses(smtp).size(), 2);
        now = QDateTime(QDate(2026, 11, 25), QTime(9, 30));
        fixture.restart();
        QTRY_COMPARE_WITH_TIMEOUT(dailyStatuses(smtp).size(), 3, 15000);
        QVERIFY(dailyStatuses(smtp).last().contains(QLatin1String("(server start)")));

        // Switched on at 10:00 for 07:00, the first one goes the next day, not at once.
        ProofOfLifeSettings settings = fixture.server().proofOfLife().settings();
        settings.dailyStatus = false;
        QVERIFY(fixture.server().proofOfLife().accept(settings).isEmpty());
        now = QDateTime(QDate(2026, 11, 27), QTime(10, 0));
        settings.dailyStatus = true;
        QVERIFY(fixture.server().proofOfLife().accept(settings).isEmpty());
        fixture.server().proofOfLife().dailyCheck();
        QTest::qWait(200);
        QCOMPARE(dailyStatuses(smtp).size(), 3);
        now = QDateTime(QDate(2026, 11, 28), QTime(7, 1));
        QTRY_COMPARE_WITH_TIMEOUT(dailyStatuses(smtp).size(), 4, 15000);
    }

    void checkUrlOnlyWhileTheDatabaseCanBeWritten()
    {
        QTemporaryDir web;
        HttpServer http(web.path());
        const QString url = http.url();
        QVERIFY2(!url.isEmpty(), http.out.constData());
        InProcessServer fixture(0.001); // one minute is 60 ms
        QString error;
        QVERIFY2(fixture.start(
                     [&](Database &db) {
                         db.run(QStringLiteral("INSERT INTO ProofOfLife (PingUrl, PingMinutes) VALUES (?, 1)"), {url});
                     },
                     &error),
                 qPrintable(error));
        QTRY_VERIFY_WITH_TIMEOUT(http.fetches() >= 3, 15000);

        const QString file = fixture.server().database().path();
        QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner));
        QVERIFY(!fixture.server().proofOfLife().healthy());
        QTest::qWait(150); // a fetch already under way may still arrive
        const int before = http.fetches();
        QTest::qWait(400); // more than six intervals
        QCOMPARE(http.fetches(), before);

        QVERIFY(QFile::setPermissions(file, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
        QTRY_VERIFY_WITH_TIMEOUT(http.fetches() >= before + 2, 15000);

        // A URL that is not http(s) is refused at Accept and changes nothing.
        ProofOfLifeSettings bad = fixture.server().proofOfLife().settings();
        bad.pingUrl = QStringLiteral("ftp://checks.lab.example/x");
        QVERIFY(!fixture.server().proofOfLife().accept(bad).isEmpty());
        QCOMPARE(fixture.server().proofOfLife().settings().pingUrl, url);
    }
};

QTEST_MAIN(TestProofOfLife)
#include "tst_proof_of_life.moc"
