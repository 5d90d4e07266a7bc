// The other channel, end to end: aiosmtpd as the mail server and the software fax modem on a pseudo-terminal. An
// e-mail refused for good (550 for every recipient, three attempts) goes once by fax and arrives as a page; a fax
// that fails for good (a busy line, three attempts) goes once by e-mail. The original and its fallback are both in
// the history.

#include "FaxDevice.h"
#include "FaxFinder.h"
#include "InProcessServer.h"
#include "ListStore.h"
#include "LocalSmtpServer.h"
#include "SoftModem.h"

#include <QSqlQuery>
#include <QtTest>

using namespace osprel;
using osprel::faxlab::SoftModem;

namespace {
const QString kAlert = QStringLiteral("41|4;Chamber 4;Walk-in;On;QLM V;T/H;Running;Yes|999;CH1 actual high|"
                                      "85;91;100;0|60;58;40;0|5005|9:55 pm");

// Statuses and categories of a history table, oldest first.
QStringList historyRows(const Database &database, const QString &table)
{
    QStringList rows;
    QSqlQuery query = database.run(QStringLiteral("SELECT Status || '|' || AlarmCatagory FROM ") + table +
                                   QStringLiteral(" ORDER BY rowid"));
    while (query.next())
        rows.append(query.value(0).toString());
    return rows;
}

SoftModem::Options modemOptions(const QTemporaryDir &lab, SoftModem::Line line)
{
    SoftModem::Options options;
    options.linkPath = lab.filePath(QStringLiteral("ttyFAX0"));
    options.receivedTiff = lab.filePath(QStringLiteral("received.tif"));
    options.line = line;
    return options;
}

// The server with one e-mail recipient and one fax recipient, the modem found and fax on.
bool startServer(InProcessServer &fixture, const LocalSmtpServer &smtp, const SoftModem &modem)
{
    QString error;
    const bool started = fixture.start(
        [&](Database &db) {
            InProcessServer::mailToDuty(db, smtp.address());
            db.run(QStringLiteral("INSERT INTO Contacts (LastName, FirstName, FaxEnabled, FaxNumber)"
                                  " VALUES ('Roe', 'Al', 1, '5550002222')"));
            db.run(QStringLiteral("UPDATE SetupComm SET FaxStation = '+1 555 0100 Lab'"));
        },
        &error);
    if (!started) {
        qWarning("%s", qPrintable(error));
        return false;
    }
    EmailFaxServer &server = fixture.server();
    server.faxFinder().setSearchSystemPorts(false);
    server.faxFinder().setExtraPaths({modem.linkPath()});
    server.faxDevice().FindDevice();
    return server.faxDevice().gblnFaxDeviceFound && fixture.link();
}
} // namespace

class TestFallbackE2E : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void emailRefusedForGoodGoesByFax()
    {
        QTemporaryDir lab;
        SoftModem modem(modemOptions(lab, SoftModem::Line::Answer));
        QString error;
        QVERIFY2(modem.start(&error), qPrintable(error));
        LocalSmtpServer smtp;
        LocalSmtpServer::Options refusing;
        refusing.refuseRcpt = QStringLiteral("lab.test");
        QVERIFY2(smtp.start(refusing, &error), qPrintable(error));

        InProcessServer fixture(0.05);
        QVERIFY(startServer(fixture, smtp, modem));
        QVERIFY(fixture.sendAlert(kAlert));

        // The original fax and, after the third refused e-mail, the fallback fax: two calls, two pages.
        const Database &database = fixture.server().database();
        QTRY_COMPARE_WITH_TIMEOUT(historyRows(database, QStringLiteral("FaxHistory")).size(), 2, 120000);
        const QStringList faxes = historyRows(database, QStringLiteral("FaxHistory"));
        QCOMPARE(faxes.first(), QStringLiteral("Sent|CHAMBER_ALARM"));
        QVERIFY2(faxes.last().startsWith(QLatin1String("Sent|Fallback: ")), qPrintable(faxes.join(u',')));
        QCOMPARE(modem.result().calls, 2);
        QCOMPARE(historyRows(database, QStringLiteral("EmailHistory")),
                 QStringList{QStringLiteral("Attempt 3 Failed|CHAMBER_ALARM")});
        QVERIFY(smtp.messages().isEmpty());
        QVERIFY(fixture.server().log().lstStatus()->stringList().filter(QStringLiteral("Fallback: ")).size() >= 1);
        QTRY_VERIFY(fixture.server().lists().lvwSendFaxQue.isEmpty());
        QCOMPARE(modem.result().calls, 2); // once: no fallback of the fallback
    }

    void faxFailingForGoodGoesByEmail()
    {
        QTemporaryDir lab;
        SoftModem modem(modemOptions(lab, SoftModem::Line::Busy));
        QString error;
        QVERIFY2(modem.start(&error), qPrintable(error));
        LocalSmtpServer smtp;
        QVERIFY2(smtp.start(&error), qPrintable(error));

        InProcessServer fixture(0.05);
        QVERIFY(startServer(fixture, smtp, modem));
        QVERIFY(fixture.sendAlert(kAlert));

        // The original e-mail, then three busy calls, then the fallback e-mail.
        QTRY_COMPARE_WITH_TIMEOUT(smtp.messages().size(), 2, 120000);
        QVERIFY2(smtp.messages().last().contains(QLatin1String("Fallback: ")), qPrintable(smtp.messages().last()));
        QCOMPARE(modem.result().calls, 3);
        const Database &database = fixture.server().database();
        QTRY_COMPARE(historyRows(database, QStringLiteral("EmailHistory")).size(), 2);
        QVERIFY(historyRows(database, QStringLiteral("EmailHistory")).last().startsWith(QLatin1String("Sent|Fallback: ")));
        QVERIFY(historyRows(database, QStringLiteral("FaxHistory")).contains(QStringLiteral("Failed|CHAMBER_ALARM")));
        QTest::qWait(300);
        QCOMPARE(smtp.messages().size(), 2); // once
    }
};

QTEST_MAIN(TestFallbackE2E)
#include "tst_fallback_e2e.moc"
