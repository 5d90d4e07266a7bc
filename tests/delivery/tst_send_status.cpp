// The send-status refresh: outcomes recorded in the history list and table, e-mails retried at the head of their
// queue and faxes behind the others, three tries in all, the tick limits, and the reply to the chamber program.

#include "AlertLink.h"
#include "Database.h"
#include "Fallback.h"
#include "FaxLine.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "HeadlessWindow.h"
#include "Log.h"
#include "SendStatus.h"
#include "SmtpClient.h"
#include "StoreFixture.h"
#include "TrayState.h"
#include "clsAlertCls.h"

#include <QSignalSpy>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

namespace {
class FakeFaxLine : public FaxLine
{
public:
    int faxStatus() const override { return status; }
    void endCall() override { ++hangUps; }
    int status = 1;
    int hangUps = 0;
};

QStringList job(const QString &id, int faxAttempts = -1)
{
    QStringList columns{QStringLiteral("11/21/2026  10:00:00"),
                        QStringLiteral("\tAlert ID: ") + id + u'\n',
                        QStringLiteral("Chamber 4"),
                        QStringLiteral("5551234567"),
                        QStringLiteral("0"),
                        QStringLiteral("CHAMBER_ALARM"),
                        id + QStringLiteral("|Chamber 4|high|CHAMBER_ALARM|t")};
    if (faxAttempts >= 0) {
        columns[4] = QString::number(faxAttempts);
        columns << QStringLiteral("Roe") << QStringLiteral("Al");
    }
    return columns << id;
}
} // namespace

class TestSendStatus : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_f = std::make_unique<StoreFixture>();
        m_window = std::make_unique<HeadlessWindow>();
        m_link = std::make_unique<AlertLink>(m_f->lists, m_f->timers);
        m_smtp = std::make_unique<SmtpClient>(*m_window);
        m_tray = std::make_unique<TrayState>(*m_window);
        m_status = std::make_unique<SendStatus>(m_f->lists, m_f->timers, m_f->db, *m_link, *m_smtp, *m_tray, *m_window);
        m_status->setFaxLine(&m_faxLine);
        m_chamber = new clsAlertCls;
        QVERIFY(m_link->Open_Link(m_chamber));
    }
    void cleanup()
    {
        m_status.reset();
        m_tray.reset();
        m_smtp.reset();
        m_link.reset(); // releases the chamber's object
        m_window.reset();
        m_f.reset();
    }

    void aDeliveredEmailIsRecordedAndReported()
    {
        QSignalSpy replies(m_chamber, &clsAlertCls::AlertStatus);
        m_f->lists.lvwSendEmailQue.add(job(QStringLiteral("123")));
        m_f->lists.lvwSendEmailQue.add(job(QStringLiteral("124")));
        startAttempt(0, QStringLiteral("jo@lab; "));
        g.gintEmailSendState = 1;
        m_status->SendStatUpdate();
        QCOMPARE(m_f->lists.lvwHist[0].text(1, 2), QStringLiteral("Sending"));
        QCOMPARE(g.glngEmailTicks, 1);

        g.gintEmailSendState = 3;
        m_status->SendStatUpdate();
        QCOMPARE(replies.count(), 1);
        QCOMPARE(replies.at(0), QVariantList({123, qint16(1), true}));
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 1);
        QCOMPARE(m_f->lists.lvwHist[0].text(1, 2), QStringLiteral("Sent"));
        QCOMPARE(historyRows("EmailHistory"), QStringList{QStringLiteral("Sent|jo@lab; |123")});
        QVERIFY(m_f->timers.TimerEmailMsgQue.isActive()); // one job left
        QCOMPARE(g.gintEmailSendState, qint16(0));
        QCOMPARE(g.gintIconState, qint16(1));
        QCOMPARE(m_window->caption, QStringLiteral("Messages Sent"));
    }

    void aFailingEmailIsTriedThreeTimesAtTheHead()
    {
        QSignalSpy replies(m_chamber, &clsAlertCls::AlertStatus);
        m_f->lists.lvwSendEmailQue.add(job(QStringLiteral("7")));
        for (int attempt = 1; attempt <= 3; ++attempt) {
            startAttempt(0, QStringLiteral("jo@lab; "));
            g.gintEmailSendState = 4;
            m_status->SendStatUpdate();
            QCOMPARE(m_f->lists.lvwHist[0].text(1, 2), QStringLiteral("Attempt %1 Failed").arg(attempt));
            QCOMPARE(g.gintEmailSendState, qint16(0));
        }
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 0);
        QVERIFY(!m_f->timers.TimerEmailMsgQue.isActive());
        QCOMPARE(replies.count(), 1);
        QCOMPARE(replies.at(0), QVariantList({7, qint16(1), false}));
        QCOMPARE(historyRows("EmailHistory"), QStringList{QStringLiteral("Attempt 3 Failed|jo@lab; |7")});
        QCOMPARE(g.gintIconState, qint16(2));
    }

    void aSilentSendIsGivenUpAfterSixtyTicks()
    {
        m_f->lists.lvwSendEmailQue.add(job(QStringLiteral("8")));
        startAttempt(0, QStringLiteral("jo@lab; "));
        g.gintEmailSendState = 1;
        for (int tick = 1; tick < SendStatus::kEmailGiveUpTicks; ++tick)
            m_status->SendStatUpdate();
        QCOMPARE(g.gintEmailSendState, qint16(1));
        m_status->SendStatUpdate();
        QCOMPARE(g.gintEmailSendState, qint16(4));
        QCOMPARE(m_smtp->SmtpState(), qint16(0));
        m_status->SendStatUpdate();
        QCOMPARE(m_f->lists.lvwHist[0].text(1, 2), QStringLiteral("Attempt 1 Failed"));
    }

    void aFailedFaxWaitsBehindTheOthers()
    {
        QSignalSpy replies(m_chamber, &clsAlertCls::AlertStatus);
        m_f->lists.lvwSendFaxQue.add(job(QStringLiteral("1"), 0));
        m_f->lists.lvwSendFaxQue.add(job(QStringLiteral("2"), 0));
        const auto fail = [this] {
            startAttempt(1, m_f->lists.lvwSendFaxQue.text(1, 4));
            g.gintFaxSendState = 4;
            m_status->SendStatUpdate();
        };
        fail(); // fax 1, first try
        QCOMPARE(column(m_f->lists.lvwSendFaxQue, 10), QStringList({"2", "1"}));
        QCOMPARE(column(m_f->lists.lvwSendFaxQue, 5), QStringList({"0", "1"}));
        QCOMPARE(m_f->lists.lvwHist[1].text(1, 2), QStringLiteral("Failed"));
        QCOMPARE(m_faxLine.hangUps, 1);

        startAttempt(1, m_f->lists.lvwSendFaxQue.text(1, 4)); // fax 2 goes through before fax 1's retry
        g.gintFaxSendState = 3;
        m_status->SendStatUpdate();
        QCOMPARE(column(m_f->lists.lvwSendFaxQue, 10), QStringList({"1"}));
        QCOMPARE(replies.at(0), QVariantList({2, qint16(2), true}));

        fail();
        fail(); // the third try of fax 1 ends it
        QCOMPARE(m_f->lists.lvwSendFaxQue.count(), 0);
        QCOMPARE(replies.last(), QVariantList({1, qint16(2), false}));
        QCOMPARE(historyRows("FaxHistory").size(), 2); // the sent one and the given-up one
    }

    // A message that fails for good on one channel goes once on the other, marked as a fallback; the fallback
    // failing in its turn goes nowhere; a fax failing for two numbers makes one e-mail.
    void finalFailuresFallBackToTheOtherChannelOnce()
    {
        m_f->lists.lvwEmailContacts.add(QStringList{"Doe", "Jo", "jo@lab"});
        g.gstrEmailRecipients = QStringLiteral("jo@lab; ");
        m_f->lists.lvwFaxContacts.add(QStringList{"Roe", "Al", "5551234567"});
        Fallback fallback(m_f->lists, m_f->timers, *m_window);
        m_status->setFinalFailureHandler([&](int via, const QStringList &row) {
            via == 1 ? fallback.emailFailedForGood(row) : fallback.faxFailedForGood(row);
        });

        m_f->lists.lvwSendEmailQue.add(job(QStringLiteral("7")));
        for (int attempt = 1; attempt <= 3; ++attempt) {
            startAttempt(0, QStringLiteral("jo@lab; "));
            g.gintEmailSendState = 4;
            m_status->SendStatUpdate();
        }
        QCOMPARE(m_f->lists.lvwSendFaxQue.count(), 1);
        const QStringList fax = m_f->lists.lvwSendFaxQue.row(1);
        QCOMPARE(fax.at(5), QStringLiteral("Fallback: CHAMBER_ALARM"));
        QCOMPARE(fax.at(6), QStringLiteral("7|Chamber 4|high|Fallback: CHAMBER_ALARM|t"));
        QCOMPARE(fax.at(3), QStringLiteral("5551234567"));
        QCOMPARE(fax.at(9), QStringLiteral("7"));
        QVERIFY(m_f->timers.TimerFaxMsgQue.isActive());

        // The fallback fax fails too: nothing goes back to e-mail.
        for (int attempt = 1; attempt <= 3; ++attempt) {
            startAttempt(1, QStringLiteral("5551234567"));
            g.gintFaxSendState = 4;
            m_status->SendStatUpdate();
        }
        QVERIFY(m_f->lists.lvwSendFaxQue.isEmpty());
        QVERIFY(m_f->lists.lvwSendEmailQue.isEmpty());

        // One alert's fax to two numbers fails for both: one e-mail.
        m_f->lists.lvwSendFaxQue.add(job(QStringLiteral("8"), 2));
        QStringList second = job(QStringLiteral("8"), 2);
        second[3] = QStringLiteral("5559999999");
        m_f->lists.lvwSendFaxQue.add(second);
        for (int number = 0; number < 2; ++number) {
            startAttempt(1, m_f->lists.lvwSendFaxQue.text(1, 4));
            g.gintFaxSendState = 4;
            m_status->SendStatUpdate();
        }
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 1);
        QCOMPARE(m_f->lists.lvwSendEmailQue.text(1, 6), QStringLiteral("Fallback: CHAMBER_ALARM"));
        QVERIFY(m_f->log->lstStatus()->stringList().contains(
            QStringLiteral("Fallback: fax to 5551234567 failed for good; sending it by e-mail.")));
    }

    // The limits are time under way: a thousand refreshes in one second (a fast time scale, SMTP events) end no
    // call; 400 s do, and 10 s do when the device is not in a call.
    void faxTimeLimits()
    {
        qint64 now = 5000;
        m_status->setElapsedSource([&now] { return now; });
        m_f->lists.lvwSendFaxQue.add(job(QStringLiteral("5"), 0));
        startAttempt(1, QStringLiteral("5551234567"));
        g.gintFaxSendState = 1;
        m_faxLine.status = 2; // a call under way
        for (int tick = 0; tick < 1000; ++tick, ++now)
            m_status->SendStatUpdate();
        QCOMPARE(g.gintFaxSendState, qint16(1));
        now += SendStatus::kFaxGiveUpMs - 1000;
        m_status->SendStatUpdate();
        QCOMPARE(g.gintFaxSendState, qint16(4));

        g.gintFaxSendState = 1;
        g.glngFaxTicks = 0;
        m_faxLine.status = 1; // the device never reached a call
        m_status->SendStatUpdate();
        now += SendStatus::kFaxCheckMs - 1;
        m_status->SendStatUpdate();
        QCOMPARE(g.gintFaxSendState, qint16(1));
        now += 1;
        m_status->SendStatUpdate();
        QCOMPARE(g.gintFaxSendState, qint16(4));
    }

    void testMessagesTouchNeitherQueueNorHistory()
    {
        m_f->lists.lvwSendEmailQue.add(job(QStringLiteral("9")));
        g.gblnEmailTest = true;
        g.gintEmailSendState = 4;
        m_status->SendStatUpdate();
        QCOMPARE(m_window->testEmailProg, QStringLiteral("Send Failed"));
        QVERIFY(!g.gblnEmailTest);
        QCOMPARE(m_f->lists.lvwSendEmailQue.count(), 1);
        QCOMPARE(m_f->log->lstEmailStatus()->stringList().mid(m_f->log->lstEmailStatus()->rowCount() - 7, 4),
                 QStringList({"***********************************************",
                              "****             Test Email                ****",
                              "***********************************************", "*** Status: Test email failed."}));
        g.gblnFaxTest = true;
        g.gintFaxSendState = 3;
        m_status->SendStatUpdate();
        QCOMPARE(m_window->testFaxProg, QStringLiteral("Sent Successfully"));
        QVERIFY(m_f->lists.lvwHist[1].isEmpty());
    }

private:
    // What the queue timer does when it starts a message: a history row on top.
    void startAttempt(int histIndex, const QString &address)
    {
        const ListStore &queue = histIndex == 0 ? m_f->lists.lvwSendEmailQue : m_f->lists.lvwSendFaxQue;
        m_f->lists.lvwHist[histIndex].insert(
            1, QStringList{QStringLiteral("now"), QStringLiteral("Sending"), QStringLiteral("Chamber 4"), address,
                           QStringLiteral("high"), QStringLiteral("CHAMBER_ALARM"), QStringLiteral("t"),
                           queue.text(1, histIndex == 0 ? 8 : 10)});
    }
    static QStringList column(const ListStore &list, int column)
    {
        QStringList values;
        for (int row = 1; row <= list.count(); ++row)
            values << list.text(row, column);
        return values;
    }
    QStringList historyRows(const QString &table)
    {
        QSqlQuery rows = m_f->db.run(QStringLiteral("SELECT Status || '|' || Address || '|' || AlarmID FROM ") + table +
                                     QStringLiteral(" ORDER BY rowid"));
        QStringList values;
        while (rows.next())
            values << rows.value(0).toString();
        return values;
    }

    std::unique_ptr<StoreFixture> m_f;
    std::unique_ptr<HeadlessWindow> m_window;
    std::unique_ptr<AlertLink> m_link;
    std::unique_ptr<SmtpClient> m_smtp;
    std::unique_ptr<TrayState> m_tray;
    std::unique_ptr<SendStatus> m_status;
    FakeFaxLine m_faxLine;
    clsAlertCls *m_chamber = nullptr;
};

QTEST_GUILESS_MAIN(TestSendStatus)
#include "tst_send_status.moc"
