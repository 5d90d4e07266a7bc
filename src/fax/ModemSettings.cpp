#include "ModemSettings.h"

#include "Database.h"

#include <QRegularExpression>
#include <QSqlQuery>
#include <QVariant>

namespace osprel {

namespace {
const QString kTable = QStringLiteral("SetupModemProfile");

bool hasRow(const Database &database)
{
    QSqlQuery q =
        database.run(QStringLiteral("SELECT COUNT(*) FROM sqlite_master WHERE type = 'table' AND name = ?"), {kTable});
    if (!q.next() || q.value(0).toInt() == 0)
        return false;
    QSqlQuery rows = database.run(QStringLiteral("SELECT COUNT(*) FROM SetupModemProfile"));
    return rows.next() && rows.value(0).toInt() > 0;
}
} // namespace

QStringList ModemSettings::splitPorts(const QString &text)
{
    static const QRegularExpression separators(QStringLiteral("[\\s,;]+"));
    return text.split(separators, Qt::SkipEmptyParts);
}

QString ModemSettings::joinPorts(const QStringList &ports)
{
    return ports.join(u' ');
}

ModemSettings ModemSettings::load(const Database &database)
{
    ModemSettings s;
    if (!hasRow(database))
        return s;
    QSqlQuery row = database.run(
        QStringLiteral("SELECT FlowControl, FlowCmd, ReportParams, BitOrder, ModemAppendsRTC, FrsDelay, FtsDelay, "
                       "TcfDelay, SearchPorts, NotModemPorts, SearchAllPorts, LastPort, LastClass "
                       "FROM SetupModemProfile ORDER BY rowid LIMIT 1"));
    if (!row.next())
        return s;
    s.profile.flowControl = qBound(0, row.value(0).toInt(), 2);
    s.profile.flowCommand = row.value(1).toString();
    s.profile.reportParameters = row.value(2).toInt() != 0;
    s.profile.bitOrder = qBound(0, row.value(3).toInt(), 1);
    s.profile.modemAppendsRtc = row.value(4).toInt() != 0;
    s.profile.frsDelay = qBound(0, row.value(5).toInt(), 255);
    s.profile.ftsDelay = qBound(0, row.value(6).toInt(), 255);
    s.profile.tcfDelay = qBound(0, row.value(7).toInt(), 255);
    s.search.ports = splitPorts(row.value(8).toString());
    s.search.notModems = splitPorts(row.value(9).toString());
    s.search.allSerialPorts = row.value(10).toInt() != 0;
    s.last.port = row.value(11).toString();
    s.last.faxClass = row.value(12).toInt();
    return s;
}

void ModemSettings::saveSetup(const Database &database, const ModemProfile &p, const SearchPolicy &search)
{
    database.run(QStringLiteral("UPDATE SetupModemProfile SET FlowControl = ?, FlowCmd = ?, ReportParams = ?, "
                                "BitOrder = ?, ModemAppendsRTC = ?, FrsDelay = ?, FtsDelay = ?, TcfDelay = ?, "
                                "SearchPorts = ?, NotModemPorts = ?, SearchAllPorts = ? WHERE rowid = ?"),
                 {p.flowControl, p.flowCommand, p.reportParameters ? 1 : 0, p.bitOrder, p.modemAppendsRtc ? 1 : 0,
                  p.frsDelay, p.ftsDelay, p.tcfDelay, joinPorts(search.ports), joinPorts(search.notModems),
                  search.allSerialPorts ? 1 : 0, database.firstRowId(kTable)});
}

void ModemSettings::saveLastDevice(const Database &database, const LastDevice &last)
{
    database.run(QStringLiteral("UPDATE SetupModemProfile SET LastPort = ?, LastClass = ? WHERE rowid = ?"),
                 {last.port, last.faxClass, database.firstRowId(kTable)});
}

} // namespace osprel
