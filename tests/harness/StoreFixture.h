#pragma once
// The ground most headless tests stand on: a data folder with its log, a new database with the delivered rows,
// and the window's lists and timers.

#include "Database.h"
#include "FormLists.h"
#include "FormTimers.h"
#include "Log.h"

#include <QTemporaryDir>
#include <memory>

struct StoreFixture
{
    StoreFixture();

    // The newest line of the status list, where every log message goes.
    QString lastLog() const;

    QTemporaryDir dir;
    std::unique_ptr<osprel::Log> log;
    osprel::Database db;
    osprel::FormLists lists;
    osprel::FormTimers timers;
};
