// The main window driven headless: load, the list layouts, page switching, closing to the tray and unloading.

#include "Dispatcher.h"
#include "EmailFaxServer.h"
#include "FormWiring.h"
#include "Globals.h"
#include "Log.h"
#include "MainWindow.h"
#include "clsAlertCls.h"

#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTabBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

namespace {
// Notes whether the log already held the start-up record when the window was first shown.
class ShowWatcher : public QObject
{
public:
    explicit ShowWatcher(QString logPath) : m_logPath(std::move(logPath)) {}
    bool recordBeforeShow = false;
    bool shown = false;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Show && !shown) {
            shown = true;
            QFile log(m_logPath);
            recordBeforeShow = log.open(QIODevice::ReadOnly) && log.readAll().contains("Starting Alarm System: ");
        }
        return false;
    }

private:
    QString m_logPath;
};
} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        resetGlobals();
        m_dir = std::make_unique<QTemporaryDir>();
        g.gstrAppPath = m_dir->path();
        m_log = std::make_unique<Log>(m_dir->path());
        m_lists = std::make_unique<FormLists>();
        m_window = std::make_unique<MainWindow>(*m_lists, *m_log);
        m_server = std::make_unique<EmailFaxServer>(*m_log, *m_lists, m_window->ports());
        wireForm(*m_window, *m_server);
        m_watcher = std::make_unique<ShowWatcher>(m_log->logPath());
        m_window->installEventFilter(m_watcher.get());
        m_server->Form_Load();
    }
    void cleanup()
    {
        m_server.reset();
        m_window.reset();
        m_lists.reset();
        m_log.reset();
        m_dir.reset();
    }

    void loadLaysOutTheWindow()
    {
        QVERIFY(m_watcher->recordBeforeShow);
        QVERIFY(m_window->isVisible());
        QCOMPARE(g.gfrmServerForm, static_cast<ServerForm *>(m_server.get()));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("Chamber Osprel"));
        QCOMPARE(m_window->findChild<QLabel *>(QStringLiteral("lblAppVersion"))->text(),
                 QStringLiteral("Version 1.0.0"));
        QVERIFY(m_log->functErr().isEmpty());

        FormLists &lists = m_server->lists();
        // The eight columns a job is queued with, then its delivery state.
        QCOMPARE(lists.lvwSendEmailQue.columnCount(), 13);
        QCOMPARE(lists.lvwSendEmailQue.header(10), QStringLiteral("Next Try"));
        QCOMPARE(lists.lvwSendFaxQue.columnCount(), 10);
        QCOMPARE(lists.lvwSendEmailQue.header(8), QStringLiteral("Alarm ID"));
        QCOMPARE(lists.lvwSendFaxQue.header(10), QStringLiteral("Alarm ID"));
        QCOMPARE(lists.lvwSendFaxQue.header(8), QStringLiteral("LName"));
        QCOMPARE(lists.lvwHist[1].header(7), QStringLiteral("Alarm Occurred"));
        QCOMPARE(lists.lvwHist[1].widthTwips(7), 1750);
        QCOMPARE(lists.lvwMsgQue.widthTwips(4), 3000);
        auto *emailQueue = m_window->findChild<QTableView *>(QStringLiteral("lvwSendEmailQue"));
        QVERIFY(emailQueue->isColumnHidden(6)); // HistData carries data only
        QCOMPARE(emailQueue->columnWidth(0), 1750 / 15);

        // Service buttons stay hidden; the queues and their labels show.
        for (const char *hidden : {"cmdAddErr", "cmdEnableTimer", "cmdSendFax", "cmdShutUp", "Label8"})
            QVERIFY2(!m_window->findChild<QWidget *>(QLatin1String(hidden))->isVisibleTo(m_window.get()), hidden);
        for (const char *shown : {"lvwMsgQue", "Label1", "SSTab2"})
            QVERIFY2(m_window->findChild<QWidget *>(QLatin1String(shown))->isVisibleTo(m_window.get()), shown);
        QCOMPARE(visiblePages(), QStringList{QStringLiteral("Frame1(0)")});
    }

    void tabSetShowsOnePageOrNone()
    {
        auto *tabs = m_window->findChild<QTabBar *>(QStringLiteral("SSTab1"));
        tabs->setCurrentIndex(4);
        QCOMPARE(visiblePages(), QStringList{QStringLiteral("Frame1(4)")});
        m_window->TabSet(QStringLiteral("email history")); // exact comparison: unknown
        QVERIFY(visiblePages().isEmpty());

        tabs->setCurrentIndex(0);
        auto *status = m_window->findChild<QWidget *>(QStringLiteral("picStatus"));
        QTest::mouseClick(m_window->findChild<QPushButton *>(QStringLiteral("cmdStatus")), Qt::LeftButton);
        QVERIFY(status->isVisible());
        QVERIFY(visiblePages().isEmpty());
        QTest::mouseClick(m_window->findChild<QPushButton *>(QStringLiteral("cmdStatusClose")), Qt::LeftButton);
        QVERIFY(!status->isVisible());
        QCOMPARE(visiblePages(), QStringList{QStringLiteral("Frame1(0)")});
    }

    void closingOnlyHidesAndUnloadEndsTheProgram()
    {
        QSignalSpy finished(m_server.get(), &EmailFaxServer::finished);
        m_window->close();
        // The offscreen platform has no notification area: the window is minimised, not hidden for good.
        QVERIFY(m_window->isVisible());
        QVERIFY(m_window->isMinimized());
        QVERIFY(g.gblnServerLinked);      // the close box keeps the server linked
        QVERIFY(m_server->Form_Unload()); // cancelled while linked
        QCOMPARE(finished.count(), 0);

        m_server->Form_MouseMove(514, 3); // only a vertical coordinate of 0 is a tray message
        m_server->Form_MouseMove(600, 0);
        QVERIFY(m_window->isMinimized());
        m_server->Form_MouseMove(515, 0);
        QVERIFY(m_window->isVisible());
        QVERIFY(!m_window->isMinimized());

        m_server->unload(EmailFaxServer::ByCode);
        QCOMPARE(finished.count(), 1);
        QVERIFY(!g.gblnServerLinked);
        QCOMPARE(g.gfrmServerForm, nullptr);
    }

    // Every panel can be left: Cancel on the modem panel works with nothing changed, another page closes a panel,
    // and so does Escape.
    void overlayPanelsHaveAWayOut()
    {
        auto *tabs = m_window->findChild<QTabBar *>(QStringLiteral("SSTab1"));
        tabs->setCurrentIndex(3);
        auto *modem = m_window->findChild<QWidget *>(QStringLiteral("picAdvModemSetup"));
        QTest::mouseClick(m_window->findChild<QPushButton *>(QStringLiteral("cmdAdvSetup")), Qt::LeftButton);
        QVERIFY(modem->isVisible());
        auto *cancel = m_window->findChild<QPushButton *>(QStringLiteral("cmdCancelModemSetup"));
        QVERIFY(cancel->isEnabled());
        QVERIFY(!m_window->findChild<QPushButton *>(QStringLiteral("cmdAcceptModemSetup"))->isEnabled());
        QTest::mouseClick(cancel, Qt::LeftButton);
        QVERIFY(!modem->isVisible());
        QCOMPARE(visiblePages(), QStringList{QStringLiteral("Frame1(3)")});

        QTest::mouseClick(m_window->findChild<QPushButton *>(QStringLiteral("cmdAdvSetup")), Qt::LeftButton);
        tabs->setCurrentIndex(5);
        QVERIFY(!modem->isVisible());
        QCOMPARE(visiblePages(), QStringList{QStringLiteral("Frame1(5)")});

        tabs->setCurrentIndex(0);
        auto *status = m_window->findChild<QWidget *>(QStringLiteral("picStatus"));
        QTest::mouseClick(m_window->findChild<QPushButton *>(QStringLiteral("cmdStatus")), Qt::LeftButton);
        QVERIFY(status->isVisible());
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTest::keyClick(m_window.get(), Qt::Key_Escape);
        QVERIFY(!status->isVisible());
        QCOMPARE(visiblePages(), QStringList{QStringLiteral("Frame1(0)")});
    }

    // A history column widens to show its longest text, and never narrows below its design width.
    void columnsWidenToTheirContent()
    {
        auto *history = m_window->findChild<QTableView *>(QStringLiteral("lvwHist(0)"));
        const int designWidth = history->columnWidth(1);
        const QString time = QStringLiteral("11/23/2026  04:15:59"), status = QStringLiteral("Attempt 3 Failed");
        m_server->lists().lvwHist[0].add(QStringList{time, status});
        const QFontMetrics metrics = history->fontMetrics();
        QTRY_VERIFY(history->columnWidth(1) > metrics.horizontalAdvance(status));
        QVERIFY(history->columnWidth(0) > metrics.horizontalAdvance(time));
        QVERIFY(history->columnWidth(1) >= designWidth);
    }

    // Why a send failed, as the transport said it, stands beside "Send Failed" and on the history row.
    void aFailedSendShowsItsReason()
    {
        const QString reason = QStringLiteral("550 5.1.1 <nobody@lab.example>: mailbox unavailable");
        g.gblnEmailTest = true;
        Q_EMIT m_server->smtp().finished(SendOutcome::failed(reason));
        QCOMPARE(m_window->findChild<QLineEdit *>(QStringLiteral("txtTestEmailProg"))->text(),
                 QStringLiteral("Send Failed: ") + reason);

        FormLists &lists = m_server->lists();
        lists.lvwHist[0].insert(1, QStringList{QStringLiteral("11/23/2026  04:15:59"), QStringLiteral("Sending")});
        lists.lvwSendEmailQue.add(QStringList{QStringLiteral("11/23/2026  04:15:59")});
        g.glngEmailAttempts = 2; // the third attempt
        Q_EMIT m_server->smtp().finished(SendOutcome::failed(reason));
        QCOMPARE(lists.lvwHist[0].text(1, 2), QStringLiteral("Attempt 3 Failed"));
        auto *history = m_window->findChild<QTableView *>(QStringLiteral("lvwHist(0)"));
        QTRY_COMPARE(history->model()->rowCount(), 1);
        QCOMPARE(history->model()->index(0, 1).data(Qt::ToolTipRole).toString(), reason);
    }

    // An alert with nobody to go to is logged once and shown in the status line.
    void anAlertThatReachesNobodyLeavesATrace()
    {
        clsAlertCls chamber;
        QVERIFY(chamber.ServerCmd(QStringLiteral("V"), 1, QString()));
        QVERIFY(chamber.SendAlert(QStringLiteral("41|4;Chamber 4;d;On;c;m;s;l|9;CH1 high|1;2;3;4|5;6;7;8|5|t")));
        m_server->dispatcher().TimerMsgQue_Timer();
        m_server->dispatcher().TimerMsgQue_Timer(); // an empty queue adds nothing
        const QString text = QStringLiteral("Alert 41 (Chamber 4) reached nobody: no e-mail recipients, fax is "
                                            "switched off.");
        QCOMPARE(m_log->lstStatus()->stringList().count(text), 1);
        QCOMPARE(m_window->findChild<QLabel *>(QStringLiteral("lblMessagePanel"))->text(), text);
        QCOMPARE(m_server->lists().lvwSendEmailQue.count(), 0);
        g.gblnServerLinked = false;
    }

    // The window opened with --settings: shown without a chamber program, and closing it ends the program.
    void settingsWindowEndsWhenClosed()
    {
        m_server->setSettingsOnly(true);
        QSignalSpy finished(m_server.get(), &EmailFaxServer::finished);
        QVERIFY(m_window->isVisible());
        m_window->close();
        QCOMPARE(finished.count(), 1);
        QVERIFY(!m_window->isVisible());
        QVERIFY(!g.gblnServerLinked);
    }

    void categoryCaptionsComeFromTheChamberProgram()
    {
        clsAlertCls object;
        QVERIFY(object.ServerCmd(QStringLiteral("V"), 1, QString()));
        QVERIFY(
            object.ServerCmd(QStringLiteral("V"), 5, QStringLiteral("Comm,Ctl,App,Resp,Parse,Chamber,Program,Status")));
        QCOMPARE(m_window->findChild<QLabel *>(QStringLiteral("lblErrCata(5)"))->text(), QStringLiteral("Chamber"));
    }

private:
    QStringList visiblePages() const
    {
        QStringList names;
        for (int i = 0; i < 6; ++i) {
            auto *frame = m_window->findChild<QFrame *>(QStringLiteral("Frame1(%1)").arg(i));
            if (frame->isVisibleTo(m_window.get()))
                names << frame->objectName();
        }
        return names;
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Log> m_log;
    std::unique_ptr<FormLists> m_lists;
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<EmailFaxServer> m_server;
    std::unique_ptr<ShowWatcher> m_watcher;
};

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"
