// The alert object's commands and the window's side of the link, without a bus.

#include "AlertLink.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Globals.h"
#include "Log.h"
#include "ServerForm.h"
#include "clsAlertCls.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

namespace {
// The window as an alert object sees it, with the link of the real window behind it.
class FakeForm : public ServerForm
{
public:
    FakeForm() : link(formLists, timers) { formLists.InitColHeaders(); }
    bool Open_Link(clsAlertCls *obj) override { return link.Open_Link(obj); }
    bool isLinkedObject(const clsAlertCls *obj) const override
    {
        return obj && obj == link.server() && !g.gstrLinkedForm.isEmpty();
    }
    bool takeAlert(const QString &text) override
    {
        const int before = formLists.lvwMsgQue.count();
        link.m_objAlertServer_AlertReady(text);
        return formLists.lvwMsgQue.count() > before;
    }
    void whenStored(std::function<void(bool)> callback) override { callback(true); }
    bool queuesBusy() const override
    {
        return !formLists.lvwMsgQue.isEmpty() || !formLists.lvwSendEmailQue.isEmpty() ||
               !formLists.lvwSendFaxQue.isEmpty();
    }
    FormLists &lists() override { return formLists; }
    void setCategoryCaption(int index, const QString &caption) override { captions[index] = caption; }

    FormLists formLists;
    FormTimers timers;
    AlertLink link;
    QString captions[8];
};
} // namespace

class TestAlert : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        resetGlobals();
        m_log = std::make_unique<Log>(m_dir.path());
        m_log->writeStartRecord(QString());
        m_form = std::make_unique<FakeForm>();
        g.gfrmServerForm = m_form.get();
    }
    void cleanup()
    {
        m_form.reset();
        m_log.reset();
    }

    void linkRules()
    {
        clsAlertCls first, second;
        QCOMPARE(g.gintAlertClsCount, qint16(2));
        QVERIFY(first.ServerCmd(QStringLiteral("Vantor32"), 1, QString()));
        QVERIFY(g.gblnServerLinked);
        QVERIFY(m_form->timers.tmrServer.isActive());
        QVERIFY(!first.ServerCmd(QStringLiteral("Vantor32"), 1, QString())); // already linked
        QVERIFY(!second.ServerCmd(QStringLiteral("Other"), 1, QString()));
        QVERIFY(!second.ServerCmd(QStringLiteral("Other"), 3, QString()));
        QCOMPARE(g.gstrLinkedForm, QStringLiteral("Vantor32"));

        // Work waiting in a queue counts as being sent.
        m_form->formLists.lvwSendEmailQue.add(QStringLiteral("waiting"));
        QVERIFY(!first.ServerCmd(QStringLiteral("Vantor32"), 2, QString()));
        m_form->formLists.lvwSendEmailQue.clear();
        // Only the linked object steers: the same form name from another object changes nothing.
        for (qint16 command = 2; command <= 7; ++command)
            QVERIFY(!second.ServerCmd(QStringLiteral("Vantor32"), command, QStringLiteral("x")));
        QVERIFY(g.gstrHeaderWord.isEmpty());
        QVERIFY(!g.gblnRawAlerts);
        QCOMPARE(g.gstrLinkedForm, QStringLiteral("Vantor32"));

        g.gintFaxSendState = 1; // a fax on its way: only the unlink-now command goes through
        QVERIFY(!first.ServerCmd(QStringLiteral("Vantor32"), 2, QString()));
        QVERIFY(!first.ServerCmd(QStringLiteral("vantor32"), 3, QString())); // exact name
        QVERIFY(first.ServerCmd(QStringLiteral("Vantor32"), 3, QString()));
        QVERIFY(!g.gblnServerLinked);
        QVERIFY(g.gstrLinkedForm.isEmpty());

        QSignalSpy unload(&m_form->link, &AlertLink::unloadRequested);
        m_form->link.tmrServer_Timer();
        QCOMPARE(unload.count(), 1);
        for (qint16 command : {qint16(0), qint16(8), qint16(-1)})
            QVERIFY(!first.ServerCmd(QStringLiteral("Vantor32"), command, QString()));
    }

    void settingCommands()
    {
        clsAlertCls object;
        FormLists &lists = m_form->formLists;
        QVERIFY(object.ServerCmd(QStringLiteral("V"), 1, QString()));
        QVERIFY(object.ServerCmd(QStringLiteral("V"), 4, QStringLiteral("   ")));
        QCOMPARE(lists.lvwHist[0].header(4), QStringLiteral("Address"));
        QVERIFY(object.ServerCmd(QStringLiteral("V"), 4, QStringLiteral(" Oven ")));
        QCOMPARE(lists.lvwSendEmailQue.header(4), QStringLiteral("Oven Name"));
        QCOMPARE(lists.lvwSendFaxQue.header(4), QStringLiteral("Oven Name"));
        QCOMPARE(lists.lvwHist[1].header(6), QStringLiteral("Oven Error"));

        QVERIFY(object.ServerCmd(QStringLiteral("V"), 5, QStringLiteral("a,b,c,d,e,f,g,h")));
        QCOMPARE(m_form->captions[7], QStringLiteral("h"));
        QVERIFY(!object.ServerCmd(QStringLiteral("V"), 5, QStringLiteral("x,y")));
        QCOMPARE(m_log->lstStatus()->stringList().last(),
                 QStringLiteral("ErrorHandler 9: Subscript out of range (ServerCmd), Form = V"));

        QStringList labels;
        for (int i = 0; i < 21; ++i)
            labels << QStringLiteral("L%1").arg(i);
        QVERIFY(object.ServerCmd(QStringLiteral("V"), 7, labels.join(u',')));
        QCOMPARE(g.gstrAlertLabels[20], QStringLiteral("L20"));
        QVERIFY(g.gstrAlertLabels[21].isEmpty());
        QVERIFY(!object.ServerCmd(QStringLiteral("V"), 7, QStringLiteral("1,2,3")));

        // CustomStr is used as text: a number is its text, a list is a type mismatch.
        QVERIFY(object.ServerCmd(QStringLiteral("V"), 4, 42));
        QCOMPARE(g.gstrHeaderWord, QStringLiteral("42"));
        QVERIFY(!object.ServerCmd(QStringLiteral("V"), 4, QStringList{"a"}));
        QCOMPARE(m_log->lstStatus()->stringList().last(),
                 QStringLiteral("ErrorHandler 13: Type mismatch (ServerCmd), Form = V"));
    }

    void alertsReachTheIncomingQueueOnlyFromTheLinkedObject()
    {
        clsAlertCls linked, other;
        QSignalSpy ready(&linked, &clsAlertCls::AlertReady);
        QVERIFY(linked.ServerCmd(QStringLiteral("V"), 1, QString()));
        QVERIFY(!linked.SendAlert(QString()));
        QCOMPARE(ready.count(), 0);
        QVERIFY(linked.SendAlert(QStringLiteral("  1|a|b|c|d| 5 |t  ")));
        QVERIFY(!other.SendAlert(QStringLiteral("9|a|b|c|d|6|t"))); // not linked: refused, not dropped
        ListStore &queue = m_form->formLists.lvwMsgQue;
        QCOMPARE(queue.count(), 1);
        QCOMPARE(queue.row(1), QStringList({"", "1|a|b|c|d| 5 |t", "", "5"}));

        QVERIFY(linked.SendAlert(QStringLiteral("short|x")));
        QCOMPARE(queue.count(), 2);
        QCOMPARE(queue.text(2, 2), QStringLiteral("short|x"));
        QCOMPARE(m_log->lstStatus()->stringList().last(),
                 QStringLiteral("ErrorHandler 9: Subscript out of range (m_objAlertServer_AlertReady)"));

        QVERIFY(linked.ServerCmd(QStringLiteral("V"), 6, QString()));
        QVERIFY(linked.SendAlert(QStringLiteral("2|a|b|c|d|7|t")));
        QCOMPARE(queue.text(3, 4), QString());

        // An alert past the limit is refused whole, with one line naming its size.
        qputenv("OSPREL_MAX_ALERT_BYTES", "100");
        QVERIFY(!linked.SendAlert(QString(101, u'x')));
        QVERIFY(linked.SendAlert(QString(33, QChar(0x00FC)))); // 66 bytes
        qunsetenv("OSPREL_MAX_ALERT_BYTES");
        QCOMPARE(queue.count(), 4);
        QVERIFY(m_log->lstStatus()->stringList().contains(
            QStringLiteral("Alert of 101 bytes refused: the limit is 100 bytes.")));
    }

    void replyCarriesTheFirstThreeDigitsOfTheAlertNumber()
    {
        clsAlertCls object;
        QSignalSpy status(&object, &clsAlertCls::AlertStatus);
        QVERIFY(object.ServerCmd(QStringLiteral("V"), 1, QString()));
        ListStore &email = m_form->formLists.lvwSendEmailQue;
        email.add(QStringList{QStringLiteral("t"), QStringLiteral("Chamber Notification\r\n\tAlert ID: 12345\r\n")});
        m_form->link.Vantor32Reply(1, true);
        QCOMPARE(status.count(), 1);
        QCOMPARE(status.at(0), QVariantList({123, 1, true}));

        email.setText(1, 2, QStringLiteral("  # Vantor 32 Hourly Report #"));
        m_form->link.Vantor32Reply(1, true);
        QCOMPARE(status.count(), 1); // the server's own report has no alert number
    }

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Log> m_log;
    std::unique_ptr<FakeForm> m_form;
};

QTEST_GUILESS_MAIN(TestAlert)
#include "tst_alert.moc"
