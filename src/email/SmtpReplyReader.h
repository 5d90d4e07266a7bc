#pragma once
// Cuts the bytes received from an SMTP server into whole lines, tells which line ends a reply, and holds a server to
// the size limits of a reply.

#include <QByteArray>
#include <QString>

namespace osprel {

class SmtpReplyReader
{
public:
    // RFC 5321 section 4.5.3.1.5: a reply line is at most 512 octets with its CR LF. A reply of more lines than
    // any real server sends (an EHLO reply has a dozen) is a server that never ends its reply.
    static constexpr int kMaxLineOctets = 512;
    static constexpr int kMaxReplyLines = 100;

    enum class Take { Line, NoLine, TooLong, TooManyLines };

    void append(const QByteArray &bytes);
    // Takes the next complete line without its line end. NoLine while none is complete; TooLong or TooManyLines
    // when the server broke a limit (the session should end: nothing after it is read).
    Take takeLine(QString &line);
    void clear();

    // True for a line that a further line of the same reply follows ("250-..."), RFC 5321 section 4.2.1.
    static bool continues(const QString &line);
    // The code of a reply line: the numeric prefix of the text before the first space of the trimmed line, as a
    // 16-bit integer; a line that is a bare three-digit code ("250", RFC 5321 section 4.2) is that code; any other
    // line without a space gives 0.
    static qint16 replyCode(const QString &line);

private:
    QByteArray m_pending;
    int m_linesInReply = 0;
};

} // namespace osprel
