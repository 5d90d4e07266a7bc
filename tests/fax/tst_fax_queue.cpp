// The fax queue: the page and image it writes, the leading 1 it dials, a busy device leaving the job queued, and
// the log lines of the engine's events.

#include "FaxDevice.h"
#include "FaxEngine.h"
#include "FaxFinder.h"
#include "FaxPage.h"
#include "FaxQueue.h"
#include "Globals.h"
#include "HeadlessWindow.h"
#include "ScriptedModem.h"
#include "SendStates.h"
#include "StoreFixture.h"

#include <QtTest>

using namespace osprel;
using osprel::faxlab::ScriptedModem;

class TestFaxQueue : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_f = std::make_unique<StoreFixture>();
        m_window = std::make_unique<HeadlessWindow>();
        m_engine = std::make_unique<FaxEngine>();
        m_device = std::make_unique<FaxDevice>(*m_engine, m_finder, m_f->db, m_f->lists, *m_window, *m_window);
        m_queue = std::make_unique<FaxQueue>(*m_engine, *m_device, m_f->lists, m_f->timers, m_f->db, *m_window,
                                             *m_window, *m_window, *m_window);
        connect(m_queue.get(), &FaxQueue::sendingStarted, this, &recordFaxSending);
        connect(m_queue.get(), &FaxQueue::finished, this, &recordFaxOutcome);
        m_f->lists.lvwFaxContacts.add(QStringList{"Roe", "Al", "5550002222"});
        m_f->lists.lvwSendFaxQue.add(QStringList{"t", "Chamber Notification\r\n\r\n  \tAlert ID: 7\r\n", "Chamber 4",
                                                 "5550002222", "0", "CHAMBER_ALARM",
                                                 "7|Chamber 4|high|CHAMBER_ALARM|9:55 pm", "Roe", "Al", "7"});
    }
    void cleanup()
    {
        m_queue.reset();
        m_device.reset();
        m_engine.reset();
        m_f.reset();
    }

    void aJobBecomesPageImageAndCall()
    {
        // A modem that never answers keeps the engine in its call: the next fax has to wait.
        ScriptedModem silent({m_f->dir.filePath(QStringLiteral("silent")), QByteArray()});
        QVERIFY(silent.start());
        m_engine->setPort(silent.linkPath());
        m_queue->TimerFaxMsgQue_Timer();

        QFile page(faxTextPath());
        QVERIFY(page.open(QIODevice::ReadOnly));
        QCOMPARE(page.readAll(), QByteArray("To: Al Roe\r\nFax Number: 5550002222\r\n\r\nChamber Notification\r\n\r\n"
                                            "\tAlert ID: 7\r\n\r\n"));
        QVERIFY(QFileInfo(faxImagePath()).size() > 0);
        QCOMPARE(m_engine->number(), QStringLiteral("15550002222")); // the 1 goes in front of every number
        QCOMPARE(m_engine->state(), int(FaxEngine::InCall));
        QCOMPARE(g.gintFaxSendState, qint16(1));
        QCOMPARE(m_f->lists.lvwHist[1].row(1).mid(1),
                 QStringList({"Finding Device", "Chamber 4", "5550002222", "high", "CHAMBER_ALARM", "9:55 pm", "7"}));
        QVERIFY(m_f->log->lstFaxStatus()->stringList().contains(
            QStringLiteral("****         Sending New Fax               ****")));

        m_queue->SendFax();
        QCOMPARE(m_f->log->lstFaxStatus()->stringList().last(), QStringLiteral("!!!!! Device currently in use !!!!!"));
        QCOMPARE(m_f->lists.lvwSendFaxQue.count(), 1);

        // The refresh giving the call up hangs up quietly: no second outcome.
        g.gintFaxSendState = 0;
        m_queue->endCall();
        QCOMPARE(m_engine->state(), int(FaxEngine::Idle));
        QCOMPARE(g.gintFaxSendState, qint16(0));
    }

    void nothingGoesWithoutDeviceRecipientsOrSwitch()
    {
        m_window->fax = false;
        m_queue->TimerFaxMsgQue_Timer();
        m_window->fax = true;
        m_f->lists.lvwFaxContacts.clear();
        m_queue->TimerFaxMsgQue_Timer();
        QCOMPARE(g.gintFaxSendState, qint16(0));
        QVERIFY(m_f->lists.lvwHist[1].isEmpty());

        // Fax was on at the last exit and no device has been found: messaging goes off, with a notice.
        m_queue->faxNotice = true;
        m_queue->TimerFaxMsgQue_Timer();
        QVERIFY(!m_window->fax);
        QVERIFY(m_window->panelMessage.startsWith(QLatin1String("When you last exited the Vantor32 program")));

        m_queue->chkEnableFax_Click(); // unticked: stored as off
        m_window->fax = true;
        m_queue->chkEnableFax_Click(); // no device: refused
        QVERIFY(!m_window->fax);
        QCOMPARE(m_window->messages.last().section(u'|', 0, 0), QStringLiteral("No Fax Device"));
    }

    void eventLinesAndTheCompletion()
    {
        FaxEvent e;
        e.kind = FaxEvent::NegotiatedKind;
        e.speed = QStringLiteral("14400");
        e.resolution = QStringLiteral("Fine");
        e.remoteId = QStringLiteral("LAB FAX");
        QCOMPARE(FaxQueue::GetFaxStatus(e),
                 QStringLiteral("Negotiated Parameters: Speed=14400 Res=Fine RemoteID=LAB FAX"));
        e.kind = FaxEvent::PagesKind;
        e.page = 1;
        e.pageCount = 2;
        QCOMPARE(FaxQueue::GetFaxStatus(e), QStringLiteral("Page 1 of 2"));

        // A completion with error 0 is a sent fax.
        e.kind = FaxEvent::CompletionKind;
        e.completionText = QStringLiteral("Fax sent");
        e.errorText = QStringLiteral("OK");
        Q_EMIT m_engine->CompletionStatus(e);
        QCOMPARE(g.gintFaxSendState, qint16(3));
        const QStringList lines = m_f->log->lstFaxStatus()->stringList();
        QVERIFY(lines.contains(QStringLiteral("*** No Error: Sent Successfully 0 OK")));
        QCOMPARE(lines.at(lines.size() - 3), QStringLiteral("*** Fax sent successfully"));
        QVERIFY(lines.contains(QStringLiteral("*** Pages: 2")));

        e.errorCode = e.completionCode = 101;
        e.errorText = FaxEngine::errorText(101);
        e.completionText = QStringLiteral("Fax failed");
        Q_EMIT m_engine->CompletionStatus(e);
        QCOMPARE(g.gintFaxSendState, qint16(4));
        QVERIFY(m_f->log->lstFaxStatus()->stringList().contains(QStringLiteral("*** Error: 101 ") + e.errorText));
    }

    void aReadOnlyImageIsReportedAndTheFaxGoesOn()
    {
        QFile image(faxImagePath());
        QVERIFY(image.open(QIODevice::WriteOnly));
        image.close();
        QVERIFY(QFile::setPermissions(faxImagePath(), QFile::ReadOwner));
        CreateFaxImage();
        QVERIFY(m_f->log->lstStatus()->stringList().contains(
            QStringLiteral("ErrorHandler 75: Path/File access error (KillFile)")));
        KillFile(m_f->dir.filePath(QStringLiteral("never-there"))); // a missing file is no error
        QCOMPARE(m_f->log->lstStatus()->stringList().filter(QStringLiteral("(KillFile)")).size(), 1);
        QFile::setPermissions(faxImagePath(), QFile::ReadOwner | QFile::WriteOwner);
    }

private:
    std::unique_ptr<StoreFixture> m_f;
    std::unique_ptr<HeadlessWindow> m_window;
    std::unique_ptr<FaxEngine> m_engine;
    FaxFinder m_finder;
    std::unique_ptr<FaxDevice> m_device;
    std::unique_ptr<FaxQueue> m_queue;
};

QTEST_MAIN(TestFaxQueue)
#include "tst_fax_queue.moc"
