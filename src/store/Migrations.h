#pragma once
// The versions of EMAILFAX.MDE's schema. A file carries its version in PRAGMA user_version: 0 is the classic set of
// tables (a file made before versions were kept), and each migration takes a file one version further. They run in
// order at start, all in one transaction, so a file is either wholly at the new version or untouched.

#include <QSqlDatabase>
#include <QString>

namespace osprel {

// The version this program writes and reads.
int currentSchemaVersion();
// The version a file carries.
int schemaVersion(QSqlDatabase &database);

// Brings the file to currentSchemaVersion(): runs the migrations it lacks, in order, and stores the new version,
// in one transaction; raises (leaving the file as it was) when one fails. A file at the current version is left
// alone; one newer than this program is left alone too (its caller decides what to do with it).
void migrate(QSqlDatabase &database);

} // namespace osprel
