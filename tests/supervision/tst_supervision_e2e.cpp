// Watching the watchers, end to end: a chamber program in its own process (examples/chamber.py) on a private bus,
// the server with its window in this process, and aiosmtpd as the mail server. A chamber program killed with
// SIGKILL, one that links again, and one that hangs with its bus connection open each bring their notification,
// once.

#include "InProcessServer.h"
#include "ListStore.h"
#include "LocalSmtpServer.h"
#include "Supervision.h"

#include <QProcess>
#include <QtTest>
#include <csignal>

using namespace osprel;

namespace {
// A chamber program in its own process; started() returns once it is linked.
struct Chamber
{
    Chamber(const QString &bus, const QStringList &options)
    {
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral("/usr/bin/python3"),
                      QStringList{QStringLiteral(OSPREL_SOURCE_DIR "/examples/chamber.py"), QStringLiteral("--bus"), bus,
                                  QStringLiteral("--no-alert"), QStringLiteral("--stay")} +
                          options);
    }
    ~Chamber()
    {
        process.kill();
        process.waitForFinished(5000);
    }
    bool linked()
    {
        return QTest::qWaitFor(
            [&] {
                output += process.readAll();
                return output.contains("linked: True");
            },
            20000);
    }
    void signal(int number) { ::kill(pid_t(process.processId()), number); }

    QProcess process;
    QByteArray output;
};
} // namespace

class TestSupervisionE2E : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void stoppedRelinkedAndSilent()
    {
        LocalSmtpServer smtp;
        QString error;
        QVERIFY2(smtp.start(&error), qPrintable(error));
        InProcessServer fixture(0.01);
        QVERIFY2(fixture.start(
                     [&](Database &db) {
                         InProcessServer::mailToDuty(db, smtp.address());
                     },
                     &error),
                 qPrintable(error));
        const QString stopped = QStringLiteral("PyChamber Chamber Notification: stopped without unlinking");

        {
            Chamber first(fixture.busAddress(), {});
            QVERIFY2(first.linked(), first.output.constData());
            first.signal(SIGKILL);
            QTRY_VERIFY_WITH_TIMEOUT(smtp.subjects().contains(stopped), 15000);
        }
        {
            Chamber again(fixture.busAddress(), {});
            QVERIFY2(again.linked(), again.output.constData());
            QTRY_VERIFY_WITH_TIMEOUT(
                smtp.subjects().contains(QStringLiteral("PyChamber Chamber Notification: linked again")), 15000);
        }
        QTRY_COMPARE_WITH_TIMEOUT(smtp.subjects().count(stopped), 2, 15000); // the second one left as well

        // Heartbeats every 10 ms, promising 5 s (50 ms at this time scale); then the program hangs, its bus
        // connection open: one "silent" notice, not one per tick.
        Chamber beating(fixture.busAddress(), {QStringLiteral("--heartbeat"), QStringLiteral("5"),
                                               QStringLiteral("--every"), QStringLiteral("0.01")});
        QVERIFY2(beating.linked(), beating.output.constData());
        QTRY_VERIFY(fixture.server().supervision().isWatchingHeartbeat());
        QTest::qWait(300); // thirty promises kept: no notice
        QVERIFY(smtp.subjects().filter(QStringLiteral("silent since")).isEmpty());
        beating.signal(SIGSTOP);
        QTRY_COMPARE_WITH_TIMEOUT(
            smtp.subjects().filter(QStringLiteral("PyChamber Chamber Notification: silent since")).size(), 1, 15000);
        QTest::qWait(500); // fifty more promised intervals
        QCOMPARE(smtp.subjects().filter(QStringLiteral("silent since")).size(), 1);

        // Every notice is in the history, sent: stopped, linked again, stopped, linked again, silent.
        const ListStore &history = fixture.server().lists().lvwHist[0];
        int sent = 0;
        for (int row = 1; row <= history.count(); ++row)
            sent += history.text(row, 2) == QLatin1String("Sent") && history.text(row, 3) == QLatin1String("PyChamber");
        QCOMPARE(sent, 5);
        beating.signal(SIGCONT);
    }
};

QTEST_MAIN(TestSupervisionE2E)
#include "tst_supervision_e2e.moc"
