#include "StoreFixture.h"

#include "Globals.h"

StoreFixture::StoreFixture()
{
    osprel::resetGlobals();
    osprel::g.gstrAppPath = dir.path();
    log = std::make_unique<osprel::Log>(dir.path());
    log->writeStartRecord(QString()); // the log file exists from start-up on
    db.DBInitADO(dir.path());
    lists.InitColHeaders();
}

QString StoreFixture::lastLog() const
{
    const QStringList lines = log->lstStatus()->stringList();
    return lines.isEmpty() ? QString() : lines.last();
}
