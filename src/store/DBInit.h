#pragma once
// The start-up load: contacts into the three contact lists (half-entered rows are purged), both histories trimmed
// and loaded, and the communication settings.

namespace osprel {

class CommSetupPort;
class Database;
class FormLists;

void DBInit(const Database &database, FormLists &lists, CommSetupPort &port);

} // namespace osprel
