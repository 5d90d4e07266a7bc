#pragma once
// The fax page: the notification text with a two-line address header in FaxText.txt, and the fax image
// FaxImage.fmf made from it, both in the data folder and both overwritten for every fax.

#include "QueueRoutines.h"

#include <QString>
#include <QStringList>

namespace osprel {

QString faxTextPath();
QString faxImagePath();

// Deletes one file; a missing file is no error, one that may not be deleted is reported. The caller goes on.
void KillFile(const QString &path);
void WriteToFile(const QStringList &lines, const RecipientRec &recipient);
void CreateFaxImage();

} // namespace osprel
