// make-db-fixture: writes a database as this version of the server makes it, with rows in every table, for the
// upgrade tests (tests/store/fixtures). Usage: make-db-fixture OUTPUT_FILE

#include "Database.h"
#include "Log.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <cstdio>

using namespace osprel;

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: make-db-fixture OUTPUT_FILE\n");
        return 2;
    }
    QTemporaryDir dir;
    Log log(dir.path());
    {
        Database db;
        db.DBInitADO(dir.path());
        if (!db.isOpen())
            return 1;
        const QString contact = QStringLiteral("INSERT INTO Contacts (LastName, FirstName, EMailEnabled, FaxEnabled, "
                                               "EmailName, FaxNumber, Notes) VALUES (?, ?, ?, ?, ?, ?, ?)");
        db.run(contact, {QStringLiteral("Nguyen"), QStringLiteral("Lan"), 1, 1, QStringLiteral("lan@lab.example"),
                         QStringLiteral("5551230001"), QStringLiteral("Day shift")});
        db.run(contact, {QStringLiteral("O'Hara"), QStringLiteral("Pat"), 1, 0, QStringLiteral("pat@localhost"),
                         QVariant(), QVariant()});
        db.run(contact, {QStringLiteral("Schmidt"), QStringLiteral("Eva; \"Evi\""), 0, 1, QVariant(),
                         QStringLiteral("5551230002"), QStringLiteral("Nachtschicht, Kühlraum")});
        const QString history = QStringLiteral("INSERT INTO %1 VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
        db.run(history.arg(QLatin1String("EmailHistory")),
               {QStringLiteral("11/21/2026  08:14:02"), QStringLiteral("Sent"), QStringLiteral("Chamber 4"),
                QStringLiteral("lan@lab.example; pat@localhost; "), QStringLiteral("CH1 actual high alarm"),
                QStringLiteral("CHAMBER_ALARM"), QStringLiteral("8:13 am"), QStringLiteral("101")});
        db.run(history.arg(QLatin1String("EmailHistory")),
               {QStringLiteral("11/21/2026  09:02:47"), QStringLiteral("Attempt 3 Failed"), QStringLiteral("Oven 2"),
                QStringLiteral("lan@lab.example; "), QStringLiteral("Controller not responding"),
                QStringLiteral("CONTROLLER_ERROR"), QStringLiteral("9:01 am"), QStringLiteral("102")});
        db.run(history.arg(QLatin1String("FaxHistory")),
               {QStringLiteral("11/21/2026  08:15:40"), QStringLiteral("Sent"), QStringLiteral("Chamber 4"),
                QStringLiteral("5551230002"), QStringLiteral("CH1 actual high alarm"), QStringLiteral("CHAMBER_ALARM"),
                QStringLiteral("8:13 am"), QStringLiteral("101")});
        db.run(QStringLiteral("UPDATE SetupComm SET EmailServer = ?, EmailReturnAddress = ?, FaxEnabledAtBoot = 0"),
               {QStringLiteral("mail.lab.example:2525"), QStringLiteral("emailfax@lab.example")});
        db.run(QStringLiteral("UPDATE SetupModem SET DevInitStr = ?, ClassOptBtn = 2"), {QStringLiteral("ATZ&F")});
        db.run(QStringLiteral("UPDATE SetupPriority SET PLevelID = '2' WHERE rowid = 8"));
        db.run(QStringLiteral("UPDATE AlarmMsgs SET EntryDate = ?, ErrID = ?, OverWrite = 0, Priority = 2, "
                              "Catagory = 5007, AlarmString = ?, HistData = ? WHERE rowid <= 2"),
               {QStringLiteral("11/21/2026  07:00:00"), QStringLiteral("7"), QStringLiteral("held alarm text"),
                QStringLiteral("7|Chamber 4|Door open|GENERAL_STATUS|7:00 am")});
        db.close();
    }
    const QString out = QString::fromLocal8Bit(argv[1]);
    QFile::remove(out);
    if (!QFile::copy(dir.filePath(QLatin1String(Database::kFileName)), out)) {
        std::fprintf(stderr, "cannot write %s\n", argv[1]);
        return 1;
    }
    std::printf("wrote %s\n", argv[1]);
    return 0;
}
