// The Active Alarms page and the settings behind it, driven as a person would: a level's acknowledgement rule set
// on the priority page and kept by Accept; a contact put on the escalation list; an alarm of that level opening a
// ticket; acknowledging it with a name and a comment, and clearing it, with the row, the history and the database
// checked after each.

#include "Database.h"
#include "EmailFaxServer.h"
#include "FormWiring.h"
#include "Globals.h"
#include "Log.h"
#include "MainWindow.h"
#include "WindowServer.h"
#include "TimeScale.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QSqlQuery>
#include <QTabBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

class TestActiveAlarms : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        QVERIFY(m_home.isValid());
        {
            Database setup;
            setup.DBInitADO(m_home.path());
            setup.run(QStringLiteral("DELETE FROM Contacts"));
            setup.run(QStringLiteral("INSERT INTO Contacts (LastName, FirstName, EMailEnabled, EmailName, FaxNumber)"
                                     " VALUES ('Nguyen', 'Lan', 1, 'lan@lab.test', ''),"
                                     " ('Boss', 'Big', 0, 'boss@lab.test', '5551230002')"));
            setup.run(QStringLiteral("DELETE FROM Tickets"));
        }
        m_app.start(m_home.path());
    }
    void cleanup() { m_app.stop(); }

    void ruleAndEscalationListAreSetInTheWindow()
    {
        tab(QStringLiteral("Alarm Priority"));
        auto *ack = find<QCheckBox>("chkAckRequired(0)");
        auto *every = find<QSpinBox>("spnRepeatMinutes(0)");
        QVERIFY(!every->isEnabled());
        QTest::mouseClick(ack, Qt::LeftButton, {}, QPoint(8, ack->height() / 2));
        QVERIFY(every->isEnabled());
        QVERIFY(find<QPushButton>("cmdAcceptPriority")->isEnabled()); // the page is marked changed
        every->setValue(2);
        find<QSpinBox>("spnRepeatTimes(0)")->setValue(3);
        find<QSpinBox>("spnEscalateMinutes(0)")->setValue(5);
        click("cmdAcceptPriority");
        QCOMPARE(scalar("SELECT AckRequired || ',' || RepeatMinutes || ',' || RepeatTimes || ',' || EscalateMinutes"
                        " FROM SetupTicketRule WHERE PriorityID = 0"),
                 QVariant(QStringLiteral("1,2,3,5")));
        // Cancel after an edit puts back what is stored.
        every->setValue(9);
        click("cmdCancelPriority");
        QCOMPARE(every->value(), 2);

        tab(QStringLiteral("Recipients"));
        auto *all = find<QTableView>("lvwMainContacts");
        QTest::mouseClick(all->viewport(), Qt::LeftButton, {}, all->visualRect(all->model()->index(1, 0)).center());
        click("cmdAddEscalation");
        click("cmdAddEscalation"); // twice is once
        QCOMPARE(m_app.lists->lvwEscalationContacts.count(), 1);
        QCOMPARE(m_app.lists->lvwEscalationContacts.row(1).join(u'|'), QStringLiteral("Boss|Big|boss@lab.test|5551230002"));
        QCOMPARE(scalar("SELECT EscalationEnabled FROM Contacts WHERE LastName = 'Boss'"), QVariant(1));
        auto *escalation = find<QTableView>("lvwEscalationContacts");
        QTest::mouseClick(escalation->viewport(), Qt::LeftButton, {},
                          escalation->visualRect(escalation->model()->index(0, 0)).center());
        click("cmdRemEscalation");
        QCOMPARE(m_app.lists->lvwEscalationContacts.count(), 0);
        QCOMPARE(scalar("SELECT EscalationEnabled FROM Contacts WHERE LastName = 'Boss'"), QVariant(0));
    }

    void acknowledgeThenClear()
    {
        m_app.server->priorities().ticketRule(0) = TicketRule{true, 2, 3, 5};
        SendJob job{QStringLiteral("text"), QStringLiteral("Chamber 4"), QStringLiteral("CHAMBER_ALARM"),
                    QStringLiteral("41|Chamber 4|CH1 high|CHAMBER_ALARM|9:55 pm"), QStringLiteral("41")};
        m_app.server->tickets().immediateAlert(0, job);
        QCOMPARE(m_app.lists->lvwActiveAlarms.count(), 1);
        const QString code = m_app.lists->lvwActiveAlarms.text(1, 1);
        QVERIFY(job.categoryName.endsWith(QStringLiteral(", Ticket ") + code));
        QCOMPARE(m_app.lists->lvwActiveAlarms.text(1, 7), QStringLiteral("Open"));

        tab(QStringLiteral("Active Alarms"));
        click("cmdAcknowledge"); // nothing selected
        auto *box = m_app.window->findChild<QMessageBox *>(QStringLiteral("messageBox"));
        QVERIFY(box);
        QCOMPARE(box->windowTitle(), QStringLiteral("No Alarm Selected"));
        box->close();
        auto *list = find<QTableView>("lvwActiveAlarms");
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(0, 0)).center());
        click("cmdAcknowledge"); // no name yet
        QTRY_VERIFY(m_app.window->findChild<QMessageBox *>(QStringLiteral("messageBox")));
        m_app.window->findChild<QMessageBox *>(QStringLiteral("messageBox"))->close();
        QCOMPARE(m_app.lists->lvwActiveAlarms.text(1, 7), QStringLiteral("Open"));

        QTest::keyClicks(find<QLineEdit>("txtAckName"), QStringLiteral("Lan Nguyen"));
        QTest::keyClicks(find<QLineEdit>("txtAckComment"), QStringLiteral("door closed | samples moved"));
        click("cmdAcknowledge");
        QCOMPARE(m_app.lists->lvwActiveAlarms.text(1, 7), QStringLiteral("Acknowledged"));
        QVERIFY(m_app.lists->lvwActiveAlarms.note(1).startsWith(QStringLiteral("Acknowledged by Lan Nguyen (window)")));
        QCOMPARE(scalar("SELECT State FROM Tickets"), QVariant(1));
        QCOMPARE(scalar("SELECT Action || '|' || Who || '|' || How || '|' || Comment FROM TicketActions"),
                 QVariant(QStringLiteral("Acknowledged|Lan Nguyen|window|door closed / samples moved")));
        // The history's top row, in the list and the table: status, who and how, the comment, the ticket.
        const QStringList top = m_app.lists->lvwHist[0].row(1);
        QCOMPARE(top.mid(1, 5), QStringList({"Acknowledged", "Chamber 4", "Lan Nguyen (window)",
                                             "door closed / samples moved", "CHAMBER_ALARM, Ticket " + code}));
        QCOMPARE(scalar("SELECT Status || '|' || Address FROM EmailHistory ORDER BY rowid DESC LIMIT 1"),
                 QVariant(QStringLiteral("Acknowledged|Lan Nguyen (window)")));
        click("cmdAcknowledge"); // already acknowledged: nothing more is stored
        QCOMPARE(scalar("SELECT count(*) FROM TicketActions"), QVariant(1));

        click("cmdClearAlarm");
        QVERIFY(answer(QMessageBox::Yes).contains(code));
        QCOMPARE(m_app.lists->lvwActiveAlarms.count(), 0);
        QCOMPARE(scalar("SELECT State FROM Tickets"), QVariant(2));
        QCOMPARE(m_app.lists->lvwHist[0].text(1, 2), QStringLiteral("Cleared"));
        QCOMPARE(scalar("SELECT count(*) FROM TicketActions WHERE Action = 'Cleared' AND How = 'window'"), QVariant(1));
    }

private:
    template <typename T> T *find(const char *name) const
    {
        T *w = m_app.window->findChild<T *>(QLatin1String(name));
        if (!w)
            qFatal("no widget %s", name);
        return w;
    }
    void click(const char *name)
    {
        auto *button = find<QPushButton>(name);
        QVERIFY2(button->isVisible() && button->isEnabled(), name);
        QTest::mouseClick(button, Qt::LeftButton);
    }
    void tab(const QString &caption)
    {
        auto *tabs = find<QTabBar>("SSTab1");
        for (int i = 0; i < tabs->count(); ++i) {
            if (tabs->tabText(i) == caption)
                QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(i).center());
        }
        QCOMPARE(tabs->tabText(tabs->currentIndex()), caption);
    }
    QString answer(QMessageBox::StandardButton button)
    {
        auto *box = m_app.window->findChild<QMessageBox *>(QStringLiteral("confirmBox"));
        if (!box)
            return QStringLiteral("no confirmation box");
        const QString question = box->text();
        QTest::mouseClick(box->button(button), Qt::LeftButton);
        if (!QTest::qWaitFor([this] { return !m_app.window->findChild<QMessageBox *>(QStringLiteral("confirmBox")); }))
            return QStringLiteral("the confirmation box stayed");
        return question;
    }
    QVariant scalar(const char *sql) const
    {
        QSqlQuery query = m_app.server->database().run(QString::fromLatin1(sql));
        return query.next() ? query.value(0) : QVariant();
    }

    QTemporaryDir m_home;
    WindowServer m_app;
};

QTEST_MAIN(TestActiveAlarms)
#include "tst_active_alarms.moc"
