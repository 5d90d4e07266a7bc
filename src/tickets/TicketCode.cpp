#include "TicketCode.h"

#include "RunError.h"

#include <QRandomGenerator>
#include <QRegularExpression>

namespace osprel {

namespace {
const char kLetters[] = "ABCDEFGHJKLMNPQRSTUVWXYZ"; // no I, no O
constexpr int kLetterCount = int(sizeof(kLetters)) - 1;
} // namespace

QString newTicketCode(const std::function<bool(const QString &)> &taken)
{
    QRandomGenerator *random = QRandomGenerator::global();
    for (int attempt = 0; attempt < 1000; ++attempt) {
        QString code = QStringLiteral("%1-").arg(random->bounded(10000), 4, 10, QLatin1Char('0'));
        code += QLatin1Char(kLetters[random->bounded(kLetterCount)]);
        code += QLatin1Char(kLetters[random->bounded(kLetterCount)]);
        if (!taken || !taken(code))
            return code;
    }
    raise(Err::Overflow, QStringLiteral("No free ticket code"));
}

QString normalTicketCode(const QString &typed)
{
    static const QRegularExpression form(QStringLiteral("^[0-9]{4}-[A-Z]{2}$"));
    const QString code = typed.trimmed().toUpper();
    return code.size() == 7 && form.match(code).hasMatch() ? code : QString();
}

} // namespace osprel
