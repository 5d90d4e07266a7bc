#include "MailAddress.h"

namespace osprel {

QString normalizeAddress(const QString &text)
{
    QString address = text.trimmed();
    if (address.size() >= 2 && address.startsWith(u'<') && address.endsWith(u'>'))
        address = address.mid(1, address.size() - 2).trimmed();
    return address;
}

QString addressProblem(const QString &address)
{
    if (address.isEmpty())
        return QStringLiteral("the address is empty");
    for (const QChar c : address) {
        if (c == u'\r' || c == u'\n')
            return QStringLiteral("the address holds a line break");
        if (c.category() == QChar::Other_Control)
            return QStringLiteral("the address holds a control character");
        if (c == u'<' || c == u'>')
            return QStringLiteral("the address holds an angle bracket");
        if (c.isSpace())
            return QStringLiteral("the address holds a blank");
        if (c == u';' || c == u',')
            return QStringLiteral("the address holds a \"%1\"; enter one address at a time").arg(c);
    }
    if (address.count(u'@') > 1)
        return QStringLiteral("the address holds more than one \"@\"");
    if (address.startsWith(u'@') || address.endsWith(u'@'))
        return QStringLiteral("the address has nothing before or after its \"@\"");
    return QString();
}

} // namespace osprel
