#pragma once
// The fax modem's settings beyond SetupModem, kept in the one SetupModemProfile row: the modem profile, the device
// search's ports, and the device last used (port and class), from which the server starts.

#include "FaxFinder.h"
#include "ModemProfile.h"

namespace osprel {

class Database;

struct LastDevice
{
    QString port;
    int faxClass = 0; // 1, 2 or 3 (2.0); 0 none yet
};

struct ModemSettings
{
    ModemProfile profile;
    SearchPolicy search;
    LastDevice last;

    // Reads the row; a file without it (opened read-only from an older version) gives the defaults. Raises on a
    // failing query.
    static ModemSettings load(const Database &database);
    // Stores the profile and the search policy; raises on failure.
    static void saveSetup(const Database &database, const ModemProfile &profile, const SearchPolicy &search);
    static void saveLastDevice(const Database &database, const LastDevice &last);

    // Port lists are kept and typed as one text, separated by blanks, commas or semicolons.
    static QStringList splitPorts(const QString &text);
    static QString joinPorts(const QStringList &ports);
};

} // namespace osprel
