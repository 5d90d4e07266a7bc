#include "SmtpReplyReader.h"

#include "Values.h"

namespace osprel {

void SmtpReplyReader::append(const QByteArray &bytes)
{
    m_pending += bytes;
}

bool SmtpReplyReader::takeLine(QString &line)
{
    // RFC 5321 section 2.3.8 ends lines with CR LF; a bare LF is taken as a line end too.
    const qsizetype end = m_pending.indexOf('\n');
    if (end < 0)
        return false;
    QByteArray bytes = m_pending.left(end);
    m_pending.remove(0, end + 1);
    if (bytes.endsWith('\r'))
        bytes.chop(1);
    line = QString::fromUtf8(bytes);
    return true;
}

bool SmtpReplyReader::continues(const QString &line)
{
    if (line.size() < 4 || line.at(3) != u'-')
        return false;
    for (int i = 0; i < 3; ++i) {
        if (line.at(i) < u'0' || line.at(i) > u'9')
            return false;
    }
    return true;
}

qint16 SmtpReplyReader::replyCode(const QString &line)
{
    const QString trimmed = Trim(line);
    const qsizetype space = trimmed.indexOf(u' ');
    if (space < 0)
        return 0;
    return CInt(Val(trimmed.left(space)));
}

} // namespace osprel
