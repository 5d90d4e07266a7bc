#pragma once
// A data folder's database as a bench wants it: the delivered default rows, the bench's recipients, e-mail going to
// the given mail server, and fax sending on when anybody has a fax number.

#include <QList>
#include <QString>

struct BenchRecipient
{
    QString lastName;
    QString firstName;
    QString email; // empty: no e-mail
    QString fax;   // empty: no fax
};

// Creates EMAILFAX.MDE in folder; false with the reason in *error.
bool prepareDatabase(const QString &folder, const QString &mailServer, const QList<BenchRecipient> &recipients,
                     QString *error);
