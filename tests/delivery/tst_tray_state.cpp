// The tray's picture of the send states: which caption shows, which picture flashes, and that a failure stays
// visible until the user looks at the window.

#include "Globals.h"
#include "HeadlessWindow.h"
#include "TrayState.h"

#include <QtTest>

using namespace osprel;

class TestTrayState : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    // Each step: "E F" send states before one refresh; then the caption, flash mode and picture after it.
    void flashing_data()
    {
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QStringList>("captions");
        QTest::addColumn<QList<int>>("modes");
        QTest::addColumn<QList<int>>("images");
        QTest::newRow("sending, then sent, then the sent picture flashes")
            << QStringList{"1 0", "3 0", "0 0", "0 0", "0 0"}
            << QStringList{"Sending Message", "Messages Sent", "Messages Sent", "Messages Sent", "Messages Sent"}
            << QList<int>{0, 1, 1, 1, 1} << QList<int>{1, 1, 1, 2, 1};
        QTest::newRow("a failure stays visible after later successes")
            << QStringList{"4 0", "0 0", "0 3", "0 0", "1 0"}
            << QStringList{"Send Failed", "Send Failed", "Send Failed: Other Messages Sent",
                           "Send Failed: Other Messages Sent", "Send Failed: Sending New"}
            << QList<int>{2, 2, 2, 2, 2} << QList<int>{0, 1, 1, 3, 1};
        QTest::newRow("failed outranks sent: E 4 with F 3")
            << QStringList{"4 3"} << QStringList{"Send Failed"} << QList<int>{2} << QList<int>{0};
        QTest::newRow("a failure while the sent flashing runs keeps it sent")
            << QStringList{"3 0", "4 0", "0 0", "0 0"}
            << QStringList{"Messages Sent", "Messages Sent", "Messages Sent", "Messages Sent"} << QList<int>{1, 1, 1, 1}
            << QList<int>{0, 0, 1, 2};
    }
    void flashing()
    {
        QFETCH(QStringList, steps);
        QFETCH(QStringList, captions);
        QFETCH(QList<int>, modes);
        QFETCH(QList<int>, images);
        resetGlobals();
        HeadlessWindow window;
        TrayState tray(window);
        for (int i = 0; i < steps.size(); ++i) {
            g.gintEmailSendState = qint16(steps[i].section(u' ', 0, 0).toInt());
            g.gintFaxSendState = qint16(steps[i].section(u' ', 1, 1).toInt());
            tray.IconUpdate();
            QCOMPARE(window.caption, captions[i]);
            QCOMPARE(int(g.gintFlashMode), modes[i]);
            QCOMPARE(window.image, images[i]);
        }
        QVERIFY(window.trayUpdates > 0); // the tray tip follows every change of state
    }
};

QTEST_GUILESS_MAIN(TestTrayState)
#include "tst_tray_state.moc"
