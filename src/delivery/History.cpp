#include "History.h"

#include "Database.h"
#include "ErrorReport.h"
#include "FormLists.h"
#include "Schema.h"

namespace osprel {

namespace {
QString tableOf(int histIndex)
{
    if (histIndex != 0 && histIndex != 1)
        raise(Err::SubscriptOutOfRange);
    return histIndex == 0 ? QStringLiteral("EmailHistory") : QStringLiteral("FaxHistory");
}
} // namespace

void DBAddHistLvw(const Database &database, const FormLists &lists, int histIndex)
{
    guarded(QStringLiteral("DBAddHistLvw"), [&] {
        const QString table = tableOf(histIndex);
        const QStringList row = lists.lvwHist[histIndex].row(1);
        QVariantList values;
        for (int column = 0; column < 8; ++column)
            values.append(row.value(column));
        database.run(QStringLiteral("INSERT INTO ") + table + QStringLiteral(" (") +
                         historyColumns().join(QStringLiteral(", ")) +
                         QStringLiteral(") VALUES (?, ?, ?, ?, ?, ?, ?, ?)"),
                     values);
    });
}

void DBCLearHistory(const Database &database, int histIndex)
{
    guarded(QStringLiteral("DBCLearHistory"),
            [&] { database.run(QStringLiteral("DELETE FROM ") + tableOf(histIndex)); });
}

} // namespace osprel
