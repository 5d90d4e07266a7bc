#pragma once
// The start-up load: contacts into the three contact lists (half-entered rows are purged), both histories trimmed
// and loaded, and the communication settings.

namespace osprel {

class Database;
class FormLists;
class StorePort;

void DBInit(const Database &database, FormLists &lists, StorePort &port);

} // namespace osprel
