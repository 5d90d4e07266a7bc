#pragma once
// Cuts the bytes received from an SMTP server into whole lines and tells which line ends a reply.

#include <QByteArray>
#include <QString>

namespace osprel {

class SmtpReplyReader
{
public:
    void append(const QByteArray &bytes);
    // Takes the next complete line without its line end; false while no complete line is waiting.
    bool takeLine(QString &line);
    void clear() { m_pending.clear(); }

    // True for a line that a further line of the same reply follows ("250-..."), RFC 5321 section 4.2.1.
    static bool continues(const QString &line);
    // The code of a reply: the numeric prefix of the text before the first space of the trimmed line, as a 16-bit
    // integer (a number beyond 16 bits raises Overflow); 0 when the trimmed line holds no space, as a bare "250".
    static qint16 replyCode(const QString &line);

private:
    QByteArray m_pending;
};

} // namespace osprel
