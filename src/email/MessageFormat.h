#pragma once
// The message text the SMTP client sends after DATA: header fields (RFC 5322, MIME per RFC 2045 and 2047) and a
// body made safe for the DATA phase (RFC 5321 sections 4.5.2 and 4.5.3.1.6).

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

namespace osprel::MessageFormat {

// A value that goes into one header or body line: every CR and LF becomes a space.
QString oneLine(const QString &text);

// A header field's value: printable ASCII as it is; anything else as RFC 2047 encoded words (UTF-8, base64),
// folded onto continuation lines so that no line passes 76 characters.
QByteArray encodeHeaderValue(const QString &text);

// "To: " with every address, separated by ", " and folded after a comma where a line would grow long.
QByteArray toField(const QStringList &addresses);

// A date-time as RFC 5322 section 3.3 writes it, with the moment's own zone offset: "Mon, 02 Mar 2026 14:05:09 +0100".
QByteArray dateTime(const QDateTime &moment);

// A Message-ID unique per message: "<random@domain>".
QString newMessageId(const QString &domain);

// The body as lines ended by CR LF (whatever line ends it came with), each line at most 998 octets (a longer one is
// wrapped, at a blank where one is near the end), either as 8-bit UTF-8 or quoted-printable (RFC 2045 section 6.7),
// and with every line that begins with "." given a second one (RFC 5321 section 4.5.2). Ends with CR LF unless
// empty.
QByteArray bodyData(const QString &body, bool eightBit);

} // namespace osprel::MessageFormat
