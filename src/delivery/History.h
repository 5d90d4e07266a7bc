#pragma once
// The history tables: one row per finished e-mail (EmailHistory) or fax (FaxHistory).

namespace osprel {

class Database;
class FormLists;

// Stores row 1 of lvwHist(histIndex) (0 e-mail, 1 fax) as a new row of its table.
void DBAddHistLvw(const Database &database, const FormLists &lists, int histIndex);
// Empties the table of histIndex.
void DBCLearHistory(const Database &database, int histIndex);

} // namespace osprel
