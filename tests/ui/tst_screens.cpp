// The settings screens driven as a person would, by object name with clicks and typing, headless: recipients with
// every validation message, and Accept and Cancel on every setup page, checked against the database and after a
// restart of the server.

#include "AlarmQueue.h"
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
#include <QComboBox>
#include <QCompleter>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSqlQuery>
#include <QTabBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

class TestScreens : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY(m_home.isValid()); }
    void init() { start(); }
    void cleanup() { stop(); }

    void everyValidationMessage()
    {
        tab(QStringLiteral("Recipients"));
        click("cmdEdit"); // nothing selected
        auto *box = m_app.window->findChild<QMessageBox *>(QStringLiteral("messageBox"));
        QVERIFY(box);
        QCOMPARE(box->windowTitle(), QStringLiteral("No Contact Selected"));
        QCOMPARE(box->text(), QStringLiteral("You must select a contact before editing."));
        box->close();

        click("cmdNew");
        QVERIFY(widget("picContacts")->isVisible());
        QCOMPARE(m_app.window->focusWidget(), widget("txtContactsFName"));
        const QList<std::pair<QStringList, QString>> cases = {
            {{"Ann", "Lee", "ann@lab> RCPT TO:<x@y", "", "", ""},
             "The email address cannot be used: the address holds an angle bracket."},
            {{"Ann", "Lee", "ann.lab", "", "", ""}, "The email address must contain an '@' symbol."},
            {{"Ann", "Lee", "", "12", "", ""}, "The fax number must have the numeric format ### ### ####."},
            {{"", "Lee", "", "", "", ""}, "Both first and last name fields must be completed."},
        };
        for (const auto &[fields, message] : cases) {
            fill(fields);
            click("cmdContactsOK");
            QCOMPARE(label("lblContactErr"), message);
            QVERIFY(widget("picContacts")->isVisible());
        }
        // The fax boxes take digits only, cut at their length and move on.
        auto *areaCode = m_app.window->findChild<QLineEdit *>(QStringLiteral("txtContactsFaxAC"));
        areaCode->clear();
        areaCode->setFocus();
        QTest::keyClicks(areaCode, QStringLiteral("5a5-51"));
        QCOMPARE(areaCode->text(), QStringLiteral("555"));
        QCOMPARE(m_app.window->focusWidget(), widget("txtContactsFax3D"));
        click("cmdContactsCancel");
        QVERIFY(!widget("picContacts")->isVisible());
        QVERIFY(widget("Frame1(2)")->isVisible());
        QCOMPARE(contactRows(), QStringList());
    }

    void aContactAddedEditedAndDeleted()
    {
        tab(QStringLiteral("Recipients"));
        click("cmdNew");
        fill({"Pat", "O'Hara", "pat@lab.example", "555", "123", "4567"});
        click("cmdContactsOK");
        QCOMPARE(label("lblContactErr"), QString());
        QVERIFY(!widget("picContacts")->isVisible());
        click("cmdNew");
        fill({"Pat", "O'Hara", "", "", "", ""});
        click("cmdContactsOK");
        QCOMPARE(label("lblContactErr"), QStringLiteral("Contact already exists."));
        click("cmdContactsCancel");
        QCOMPARE(contactRows(), QStringList{QStringLiteral("O'Hara|Pat|pat@lab.example|5551234567|0|0")});

        // Onto both address lists.
        selectContact(1);
        click("cmdAddEmailAdr");
        click("cmdAddFaxAdr");
        QCOMPARE(contactRows(), QStringList{QStringLiteral("O'Hara|Pat|pat@lab.example|5551234567|1|1")});
        QCOMPARE(g.gstrEmailRecipients, QStringLiteral("pat@lab.example; "));

        // Renamed, with a new address: the lists follow under the new name.
        click("cmdEdit");
        QCOMPARE(m_app.window->findChild<QLineEdit *>(QStringLiteral("txtContactsFax4D"))->text(), QStringLiteral("4567"));
        fill({"Patricia", "O'Hara", "patricia@lab.example", "555", "123", "4567"});
        click("cmdContactsOK");
        QCOMPARE(contactRows(), QStringList{QStringLiteral("O'Hara|Patricia|patricia@lab.example|5551234567|1|1")});
        checkLists({"O'Hara|Patricia|patricia@lab.example|5551234567"}, {"O'Hara|Patricia|patricia@lab.example"},
                   {"O'Hara|Patricia|5551234567"});

        // The same after a restart.
        stop();
        start();
        checkLists({"O'Hara|Patricia|patricia@lab.example|5551234567"}, {"O'Hara|Patricia|patricia@lab.example"},
                   {"O'Hara|Patricia|5551234567"});

        // Delete asks first: No keeps the person, Yes removes them everywhere.
        tab(QStringLiteral("Recipients"));
        selectContact(1);
        click("cmdDelete");
        QVERIFY(answer(QMessageBox::No).contains(QLatin1String("Patricia O'Hara")));
        QCOMPARE(contactRows().size(), 1);
        click("cmdDelete");
        answer(QMessageBox::Yes);
        QCOMPARE(contactRows(), QStringList());
        checkLists({}, {}, {});
        QCOMPARE(g.gstrEmailRecipients, QString());
    }

    // An edit keeps the person where they were: off a list they had been taken from, on one they were on.
    void anEditKeepsListMembership()
    {
        tab(QStringLiteral("Recipients"));
        click("cmdNew");
        fill({"Lan", "Nguyen", "lan@lab.example", "555", "123", "0001"});
        click("cmdContactsOK");
        selectContact(1);
        click("cmdAddEmailAdr");
        click("cmdAddFaxAdr");
        auto *faxList = m_app.window->findChild<QTableView *>(QStringLiteral("lvwFaxContacts"));
        QTest::mouseClick(faxList->viewport(), Qt::LeftButton, {},
                          faxList->visualRect(faxList->model()->index(0, 0)).center());
        click("cmdRemFaxAdr");
        checkLists({"Nguyen|Lan|lan@lab.example|5551230001"}, {"Nguyen|Lan|lan@lab.example"}, {});

        selectContact(1);
        click("cmdEdit");
        QTest::keyClicks(m_app.window->findChild<QLineEdit *>(QStringLiteral("txtContactsNotes")), QStringLiteral("Day"));
        click("cmdContactsOK");
        QCOMPARE(label("lblContactErr"), QString());
        checkLists({"Nguyen|Lan|lan@lab.example|5551230001"}, {"Nguyen|Lan|lan@lab.example"}, {});
        QCOMPARE(contactRows(), QStringList{QStringLiteral("Nguyen|Lan|lan@lab.example|5551230001|1|0")});
        stop();
        start();
        checkLists({"Nguyen|Lan|lan@lab.example|5551230001"}, {"Nguyen|Lan|lan@lab.example"}, {});
    }

    // Clearing a history asks first, and only when there is something to clear; after a restart the history is
    // newest first, as it was while running.
    void clearHistoryAsksAndHistoryKeepsItsOrder()
    {
        for (const char *time : {"11/21/2026  08:00:00", "11/21/2026  09:00:00"})
            m_app.server->database().run(QStringLiteral("INSERT INTO EmailHistory (Time, Status) VALUES (?, 'Sent')"),
                                     {QString::fromLatin1(time)});
        stop();
        start();
        auto *history = m_app.window->findChild<QTableView *>(QStringLiteral("lvwHist(0)"));
        QTRY_COMPARE(history->model()->rowCount(), 2);
        QCOMPARE(history->model()->index(0, 0).data().toString(), QStringLiteral("11/21/2026  09:00:00"));

        click("cmdClear(0)");
        QVERIFY(answer(QMessageBox::No).contains(QLatin1String("2 rows")));
        QCOMPARE(scalar("SELECT count(*) FROM EmailHistory"), QVariant(2));
        click("cmdClear(0)");
        answer(QMessageBox::Yes);
        QCOMPARE(scalar("SELECT count(*) FROM EmailHistory"), QVariant(0));
        click("cmdClear(0)"); // nothing left: no question
        QVERIFY(!m_app.window->findChild<QMessageBox *>(QStringLiteral("confirmBox")));
    }

    void alarmSetupAcceptAndCancel()
    {
        tab(QStringLiteral("Alarm Setup"));
        auto *accept = m_app.window->findChild<QPushButton *>(QStringLiteral("cmdAcceptAlarmSetup"));
        QVERIFY(!accept->isEnabled());
        QTest::mouseClick(m_app.window->findChild<QRadioButton *>(QStringLiteral("optLow(5)")), Qt::LeftButton);
        QVERIFY(accept->isEnabled());
        QVERIFY(!label("lblChangeWarning(1)").isEmpty());
        click("cmdAcceptAlarmSetup");
        QCOMPARE(scalar("SELECT PLevelID FROM SetupPriority WHERE rowid = 6"), QVariant("2"));
        QVERIFY(!accept->isEnabled());

        QTest::mouseClick(m_app.window->findChild<QRadioButton *>(QStringLiteral("optIgnore(0)")), Qt::LeftButton);
        click("cmdCancelAlarmSetup");
        QVERIFY(m_app.window->findChild<QRadioButton *>(QStringLiteral("optHi(0)"))->isChecked());
        QCOMPARE(scalar("SELECT PLevelID FROM SetupPriority WHERE rowid = 1"), QVariant("0"));
        QVERIFY(!accept->isEnabled());
    }

    void clearButtonsAndTheTestAlarm()
    {
        m_app.server->database().run(QStringLiteral("UPDATE AlarmMsgs SET OverWrite = FALSE, Catagory = 5003 + (rowid % 2)"
                                                " WHERE rowid <= 4"));
        m_app.server->alarms().InitLables();
        tab(QStringLiteral("Alarm Setup"));
        QCOMPARE(label("lblQueuedAlarms(3)"), QStringLiteral("2"));
        click("cmdClearAlmCat(3)");
        QCOMPARE(label("lblQueuedAlarms(3)"), QStringLiteral("0"));
        QCOMPARE(scalar("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = FALSE"), QVariant(2));
        click("cmdClearAllAlmCat");
        QCOMPARE(scalar("SELECT count(*) FROM AlarmMsgs WHERE OverWrite = FALSE"), QVariant(0));

        // The test alarm (a service button, hidden in the running window, in a frame every page switch disables)
        // takes the road of a received alert.
        widget("cmdAddErr")->show();
        widget("fraMsgQue")->setEnabled(true);
        click("cmdAddErr");
        QCOMPARE(m_app.server->lists().lvwMsgQue.count(), 1);
        QVERIFY(m_app.server->timers().TimerMsgQue.isActive());
    }

    void priorityAcceptAndCancel()
    {
        tab(QStringLiteral("Alarm Priority"));
        auto *onceEvery = m_app.window->findChild<QCheckBox *>(QStringLiteral("chkOnceEvery(1)"));
        QVERIFY(onceEvery->isChecked()); // the delivered Mid level has an hourly report
        QVERIFY(widget("cboMinutes(1)")->isVisible());
        QVERIFY(!widget("cboHours(1)")->isVisible());
        QTest::mouseClick(m_app.window->findChild<QRadioButton *>(QStringLiteral("optWeek(1)")), Qt::LeftButton);
        QVERIFY(widget("cboWeekday(1)")->isVisible() && widget("cboHours(1)")->isVisible());
        typeInto("cboHours(1)", QStringLiteral("7:30"));
        m_app.window->findChild<QComboBox *>(QStringLiteral("cboResetWeekday(1)"))->setCurrentText(QStringLiteral("Daily"));
        auto *lowInterval = m_app.window->findChild<QCheckBox *>(QStringLiteral("chkOnceEvery(2)"));
        QVERIFY(lowInterval->isChecked());
        tick(lowInterval);
        QVERIFY(!lowInterval->isChecked());
        QVERIFY(!widget("cboHours(2)")->isVisible());
        click("cmdAcceptPriority");
        QCOMPARE(scalar("SELECT OnceEvery || ',' || OnceEveryDayHour || ',' || ResetDay FROM SetupPriorityDef"
                        " WHERE PriorityID = 1"),
                 QVariant("3,7,7"));
        QCOMPARE(scalar("SELECT OnceEvery FROM SetupPriorityDef WHERE PriorityID = 2"), QVariant(-1));

        tick(m_app.window->findChild<QCheckBox *>(QStringLiteral("chkImmediate(0)")));
        QVERIFY(m_app.window->findChild<QPushButton *>(QStringLiteral("cmdCancelPriority"))->isEnabled());
        click("cmdCancelPriority");
        QVERIFY(m_app.window->findChild<QCheckBox *>(QStringLiteral("chkImmediate(0)"))->isChecked());
        QVERIFY(!m_app.window->findChild<QPushButton *>(QStringLiteral("cmdCancelPriority"))->isEnabled());
        QCOMPARE(m_app.window->findChild<QComboBox *>(QStringLiteral("cboHours(1)"))->currentText(), QStringLiteral("7"));
    }

    void commSetupAcceptAndCancel()
    {
        tab(QStringLiteral("Comm Setup"));
        auto *server = m_app.window->findChild<QLineEdit *>(QStringLiteral("txtMailServer"));
        server->selectAll();
        QTest::keyClicks(server, QStringLiteral("mail.lab.example:2525"));
        click("cmdAcceptCommSetup");
        QCOMPARE(scalar("SELECT EmailServer FROM SetupComm"), QVariant("mail.lab.example:2525"));
        server->selectAll();
        QTest::keyClicks(server, QStringLiteral("typo"));
        click("cmdCancelCommSetup");
        QCOMPARE(server->text(), QStringLiteral("mail.lab.example:2525"));
        QVERIFY(!m_app.window->findChild<QPushButton *>(QStringLiteral("cmdAcceptCommSetup"))->isEnabled());

        // The mail security fields take part in the same change tracking and are stored in their own table.
        auto *security = m_app.window->findChild<QComboBox *>(QStringLiteral("cboMailSecurity"));
        security->setFocus();
        QTest::keyClick(security, Qt::Key_Down);
        QVERIFY(m_app.window->findChild<QPushButton *>(QStringLiteral("cmdAcceptCommSetup"))->isEnabled());
        click("cmdAcceptCommSetup");
        QCOMPARE(scalar("SELECT Security FROM MailServerSecurity"), QVariant(1));

        // A server text that cannot be used is refused with a message naming the problem, and nothing is stored.
        server->selectAll();
        QTest::keyClicks(server, QStringLiteral("mail:"));
        click("cmdAcceptCommSetup");
        auto *box = m_app.window->findChild<QMessageBox *>(QStringLiteral("messageBox"));
        QVERIFY(box && box->isVisible());
        QVERIFY2(box->text().contains(QStringLiteral("the port after the \":\" is missing")), qPrintable(box->text()));
        box->close();
        delete box; // it would go at the next turn of the event loop
        QCOMPARE(scalar("SELECT EmailServer FROM SetupComm"), QVariant("mail.lab.example:2525"));
        QVERIFY(m_app.window->findChild<QPushButton *>(QStringLiteral("cmdAcceptCommSetup"))->isEnabled());
        server->selectAll();
        QTest::keyClicks(server, QStringLiteral("mail.lab.example:2525"));

        // The proof of life takes part too: a check URL that is not http(s) is refused and nothing is stored; a
        // good one is stored with the daily status.
        tick(m_app.window->findChild<QCheckBox *>(QStringLiteral("chkDailyStatus")));
        auto *url = m_app.window->findChild<QLineEdit *>(QStringLiteral("txtPingUrl"));
        QTest::keyClicks(url, QStringLiteral("checks.lab.example/ping"));
        click("cmdAcceptCommSetup");
        box = m_app.window->findChild<QMessageBox *>(QStringLiteral("messageBox"));
        QVERIFY(box && box->isVisible());
        QVERIFY2(box->text().contains(QStringLiteral("not an http or https address")), qPrintable(box->text()));
        box->close();
        QCOMPARE(scalar("SELECT DailyStatus || PingUrl FROM ProofOfLife"), QVariant("0"));
        url->selectAll();
        QTest::keyClicks(url, QStringLiteral("https://checks.lab.example/ping/42"));
        click("cmdAcceptCommSetup");
        QCOMPARE(scalar("SELECT DailyStatus || ',' || DailyAt || ',' || PingUrl FROM ProofOfLife"),
                 QVariant("1,07:00,https://checks.lab.example/ping/42"));
        url->selectAll();
        QTest::keyClicks(url, QStringLiteral("typo"));
        click("cmdCancelCommSetup");
        QCOMPARE(url->text(), QStringLiteral("https://checks.lab.example/ping/42"));
    }

private:
    void start() { m_app.start(m_home.path()); }
    void stop() { m_app.stop(); }
    // Answers the open confirmation box; returns its question.
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
    QWidget *widget(const char *name) const { return m_app.window->findChild<QWidget *>(QLatin1String(name)); }
    QString label(const char *name) const { return m_app.window->findChild<QLabel *>(QLatin1String(name))->text(); }
    void click(const char *name)
    {
        auto *button = m_app.window->findChild<QPushButton *>(QLatin1String(name));
        QVERIFY2(button && button->isVisible() && button->isEnabled(), name);
        QTest::mouseClick(button, Qt::LeftButton);
    }
    void tab(const QString &caption)
    {
        auto *tabs = m_app.window->findChild<QTabBar *>(QStringLiteral("SSTab1"));
        for (int i = 0; i < tabs->count(); ++i) {
            if (tabs->tabText(i) == caption)
                QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(i).center());
        }
        QCOMPARE(tabs->tabText(tabs->currentIndex()), caption);
    }
    // First, last, e-mail, and the three parts of the fax number.
    void fill(const QStringList &fields)
    {
        const char *names[] = {"txtContactsFName", "txtContactsLName", "txtContactsEmail",
                               "txtContactsFaxAC", "txtContactsFax3D", "txtContactsFax4D"};
        for (int i = 0; i < 6; ++i) {
            auto *edit = m_app.window->findChild<QLineEdit *>(QLatin1String(names[i]));
            edit->clear();
            QTest::keyClicks(edit, fields.at(i));
        }
    }
    // A check box is clicked on its box, as a person does (its widget may be wider than box and caption).
    static void tick(QCheckBox *check) { QTest::mouseClick(check, Qt::LeftButton, {}, QPoint(8, check->height() / 2)); }
    void typeInto(const char *combo, const QString &text)
    {
        auto *box = m_app.window->findChild<QComboBox *>(QLatin1String(combo));
        box->lineEdit()->selectAll();
        QTest::keyClicks(box->lineEdit(), text);
        if (box->completer() && box->completer()->popup())
            box->completer()->popup()->hide(); // the matches offered while typing
    }
    void selectContact(int row)
    {
        auto *list = m_app.window->findChild<QTableView *>(QStringLiteral("lvwMainContacts"));
        const QRect cell = list->visualRect(list->model()->index(row - 1, 0));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, cell.center());
    }
    static QStringList rows(const ListStore &list)
    {
        QStringList values;
        for (int row = 1; row <= list.count(); ++row)
            values << list.row(row).join(u'|');
        return values;
    }
    void checkLists(const QStringList &all, const QStringList &email, const QStringList &fax)
    {
        QCOMPARE(rows(m_app.server->lists().lvwMainContacts), all);
        QCOMPARE(rows(m_app.server->lists().lvwEmailContacts), email);
        QCOMPARE(rows(m_app.server->lists().lvwFaxContacts), fax);
    }
    QVariant scalar(const char *sql) const
    {
        QSqlQuery query = m_app.server->database().run(QString::fromLatin1(sql));
        return query.next() ? query.value(0) : QVariant();
    }
    QStringList contactRows() const
    {
        QSqlQuery query = m_app.server->database().run(QStringLiteral(
            "SELECT LastName || '|' || FirstName || '|' || ifnull(EmailName, '') || '|' || ifnull(FaxNumber, '') ||"
            " '|' || EMailEnabled || '|' || FaxEnabled FROM Contacts ORDER BY rowid"));
        QStringList values;
        while (query.next())
            values << query.value(0).toString();
        return values;
    }

    QTemporaryDir m_home;
    WindowServer m_app;
};

QTEST_MAIN(TestScreens)
#include "tst_screens.moc"
