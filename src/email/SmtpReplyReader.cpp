#include "SmtpReplyReader.h"

#include "Values.h"

namespace osprel {

void SmtpReplyReader::append(const QByteArray &bytes)
{
    m_pending += bytes;
}

void SmtpReplyReader::clear()
{
    m_pending.clear();
    m_linesInReply = 0;
}

SmtpReplyReader::Take SmtpReplyReader::takeLine(QString &line)
{
    // RFC 5321 section 2.3.8 ends lines with CR LF; a bare LF is taken as a line end too.
    const qsizetype end = m_pending.indexOf('\n');
    if (end < 0)
        return m_pending.size() > kMaxLineOctets ? Take::TooLong : Take::NoLine;
    if (end + 1 > kMaxLineOctets)
        return Take::TooLong;
    QByteArray bytes = m_pending.left(end);
    m_pending.remove(0, end + 1);
    if (bytes.endsWith('\r'))
        bytes.chop(1);
    line = QString::fromUtf8(bytes);
    if (++m_linesInReply > kMaxReplyLines)
        return Take::TooManyLines;
    if (!continues(line))
        m_linesInReply = 0;
    return Take::Line;
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
    if (space < 0) {
        bool digits = trimmed.size() == 3;
        for (const QChar c : trimmed)
            digits = digits && c >= u'0' && c <= u'9';
        return digits ? qint16(trimmed.toShort()) : qint16(0);
    }
    return CInt(Val(trimmed.left(space)));
}

} // namespace osprel
