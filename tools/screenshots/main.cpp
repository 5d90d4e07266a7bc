// osprel-screenshots: the main window with sample data, one PNG per page and overlay panel, for the README.
// Usage: osprel-screenshots OUTPUT_DIR [SUFFIX]

#include "Database.h"
#include "EmailFaxServer.h"
#include "FormWiring.h"
#include "Globals.h"
#include "Log.h"
#include "MainWindow.h"
#include "Recipients.h"
#include "SendStatus.h"
#include "clsAlertCls.h"

#include <QApplication>
#include <QDir>
#include <QPushButton>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <cstdio>
#include <iterator>

using namespace osprel;

namespace {
void prepare(const QString &folder)
{
    Database setup;
    setup.DBInitADO(folder);
    setup.run(
        QStringLiteral("INSERT INTO Contacts (LastName, FirstName, EMailEnabled, FaxEnabled, EmailName, FaxNumber,"
                       " Notes) VALUES ('Nguyen', 'Lan', 1, 1, 'lan.nguyen@lab.example', '5551230001', 'Day shift'),"
                       " ('O''Hara', 'Pat', 1, 0, 'pat.ohara@lab.example', NULL, NULL),"
                       " ('Schmidt', 'Eva', 0, 1, NULL, '5551230002', 'Night shift')"));
    setup.run(QStringLiteral("UPDATE SetupComm SET EmailServer = 'mail.lab.example', EmailReturnAddress ="
                             " 'emailfax@lab.example', FaxEnabledAtBoot = 0"));
    const char *rows[][8] = {
        {"11/21/2026  08:14:02", "Sent", "Chamber 4", "lan.nguyen@lab.example; pat.ohara@lab.example; ",
         "CH1 actual high alarm", "CHAMBER_ALARM", "8:13 am", "101"},
        {"11/21/2026  09:02:47", "Attempt 3 Failed", "Oven 2", "lan.nguyen@lab.example; pat.ohara@lab.example; ",
         "Controller not responding", "CONTROLLER_ERROR", "9:01 am", "102"},
    };
    for (const auto &row : rows) {
        QVariantList values;
        for (const char *value : row)
            values << QString::fromLatin1(value);
        setup.run(QStringLiteral("INSERT INTO EmailHistory VALUES (?, ?, ?, ?, ?, ?, ?, ?)"), values);
    }
    setup.run(QStringLiteral("UPDATE AlarmMsgs SET OverWrite = FALSE, Priority = 2, Catagory = 5003 WHERE rowid <= 3"));
    // Two tickets on Active Alarms: one repeated and escalated, one acknowledged.
    setup.run(QStringLiteral("UPDATE SetupTicketRule SET AckRequired = 1, RepeatMinutes = 15, RepeatTimes = 4, "
                             "EscalateMinutes = 30 WHERE PriorityID = 2"));
    setup.run(QStringLiteral(
        "INSERT INTO Tickets (Code, Level, ChamberName, Category, AlertNumber, AlarmMsg, HistData, OpenedAt,"
        " RepeatMinutes, RepeatTimes, EscalateMinutes, Repeats, NextRepeat, EscalatedAt, State, ByFax) VALUES"
        " ('4821-QX', 2, 'Chamber 4', 'CHAMBER_ALARM', '101', '', '', '2026-11-21T08:14:02.000', 15, 4, 30, 2,"
        " '2026-11-21T08:59:02.000', '2026-11-21T08:44:02.000', 0, 1),"
        " ('7305-KD', 2, 'Oven 2', 'PROGRAM_ALARM', '104', '', '', '2026-11-21T09:30:40.000', 15, 4, 30, 0,"
        " NULL, NULL, 1, 0)"));
}

bool save(MainWindow &window, const QString &path)
{
    QTest::qWait(350); // lets the batched lists and the layouts settle
    const bool ok = window.grab().save(path);
    std::printf("%s %s\n", ok ? "wrote" : "FAILED", path.toLocal8Bit().constData());
    return ok;
}
} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: osprel-screenshots OUTPUT_DIR [SUFFIX]\n");
        return 2;
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    const QString suffix = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QString();
    QDir().mkpath(out);
    QTemporaryDir home;
    prepare(home.path());
    g.gstrAppPath = home.path();
    Log log(home.path());
    FormLists lists;
    MainWindow window(lists, log);
    EmailFaxServer server(log, lists, window.ports());
    wireForm(window, server);
    server.Form_Load(); // sizes the window to the screen
    // A few alerts waiting in the incoming queue.
    clsAlertCls chamber;
    chamber.ServerCmd(QStringLiteral("Vantor32"), 1, QString());
    chamber.SendAlert(QStringLiteral(
        "103|4;Chamber 4;Walk-in;On;QLM V;T/H;Running;Yes|999;CH1 high|85;91;100;0|60;58;40;0|5005|9:55 pm"));
    server.timers().TimerInit.stop();

    bool ok = true;
    auto *tabs = window.findChild<QTabBar *>(QStringLiteral("SSTab1"));
    const char *names[] = {"email-history", "fax-history",    "recipients",   "comm-setup",
                           "alarm-setup",   "alarm-priority", "active-alarms"};
    for (int i = 0; i < tabs->count() && i < int(std::size(names)); ++i) {
        tabs->setCurrentIndex(i);
        ok &= save(window, out + QStringLiteral("/") + QLatin1String(names[i]) + suffix + QStringLiteral(".png"));
    }
    tabs->setCurrentIndex(2);
    server.recipients().lvwMainContacts_ItemClick(1);
    server.recipients().cmdEdit_Click();
    ok &= save(window, out + QStringLiteral("/recipient-editor") + suffix + QStringLiteral(".png"));
    server.recipients().cmdContactsCancel_Click();
    tabs->setCurrentIndex(0);
    window.findChild<QPushButton *>(QStringLiteral("cmdStatus"))->click();
    ok &= save(window, out + QStringLiteral("/status-report") + suffix + QStringLiteral(".png"));
    g.gblnServerLinked = false;
    return ok ? 0 : 1;
}
