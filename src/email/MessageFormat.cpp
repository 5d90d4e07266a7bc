#include "MessageFormat.h"

#include <QLocale>
#include <QUuid>

namespace osprel::MessageFormat {

namespace {
constexpr int kMaxLineOctets = 998; // RFC 5321 section 4.5.3.1.6, without the CR LF
constexpr int kQpLine = 76;         // RFC 2045 section 6.7 (5)
// 48 base64 characters: "=?UTF-8?B?" + 48 + "?=" is 60, so even the first line, after "Subject: ", stays within
// the 76 characters RFC 2047 section 2 allows a line holding encoded words.
constexpr int kEncodedWordBytes = 36;

bool isContinuationByte(char c)
{
    return (uchar(c) & 0xC0) == 0x80;
}

// Splits a line of UTF-8 into pieces of at most kMaxLineOctets octets, never inside a character, preferring a blank
// in the last quarter of a piece.
QList<QByteArray> wrapLine(QByteArray line)
{
    QList<QByteArray> pieces;
    while (line.size() > kMaxLineOctets) {
        qsizetype cut = kMaxLineOctets;
        const qsizetype blank = line.lastIndexOf(' ', kMaxLineOctets - 1);
        if (blank > kMaxLineOctets * 3 / 4) {
            cut = blank + 1;
        } else {
            while (cut > 0 && isContinuationByte(line.at(cut)))
                --cut;
        }
        pieces << line.left(cut);
        line.remove(0, cut);
    }
    pieces << line;
    return pieces;
}

// One line in quoted-printable, with soft line breaks ("=" at the end) keeping each encoded line within 76.
QList<QByteArray> quotedPrintable(const QByteArray &line)
{
    static const char hex[] = "0123456789ABCDEF";
    QList<QByteArray> out;
    QByteArray current;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const uchar c = uchar(line.at(i));
        const bool last = i == line.size() - 1;
        QByteArray piece;
        // Blanks at the end of a line would be stripped on the way; "=" and anything not printable is encoded.
        if ((c >= 33 && c <= 126 && c != '=') || ((c == ' ' || c == '\t') && !last))
            piece = QByteArray(1, char(c));
        else
            piece = QByteArray{"=", 1} + hex[c >> 4] + hex[c & 15];
        if (current.size() + piece.size() > kQpLine - 1 && !(last && current.size() + piece.size() <= kQpLine)) {
            out << current + '=';
            current.clear();
        }
        current += piece;
    }
    out << current;
    return out;
}
} // namespace

QString oneLine(const QString &text)
{
    QString line = text;
    line.replace(u'\r', u' ').replace(u'\n', u' ');
    return line;
}

QByteArray encodeHeaderValue(const QString &text)
{
    const QString value = oneLine(text);
    bool plain = value.size() <= 900;
    for (const QChar c : value)
        plain = plain && c.unicode() >= 32 && c.unicode() < 127;
    if (plain)
        return value.toLatin1();
    // RFC 2047 section 5 (1): encoded words separated by folding white space; each holds whole characters.
    const QByteArray utf8 = value.toUtf8();
    QList<QByteArray> words;
    qsizetype from = 0;
    while (from < utf8.size()) {
        qsizetype to = qMin(from + kEncodedWordBytes, utf8.size());
        while (to < utf8.size() && to > from + 1 && isContinuationByte(utf8.at(to)))
            --to;
        words << "=?UTF-8?B?" + utf8.mid(from, to - from).toBase64() + "?=";
        from = to;
    }
    return words.join("\r\n ");
}

QByteArray toField(const QStringList &addresses)
{
    QByteArray field = "TO: ";
    qsizetype lineStart = 0;
    for (int i = 0; i < addresses.size(); ++i) {
        const QByteArray address = oneLine(addresses.at(i)).toUtf8();
        if (i > 0) {
            field += ',';
            if (field.size() - lineStart + address.size() + 2 > 78) {
                field += "\r\n";
                lineStart = field.size();
            }
            field += ' ';
        }
        field += address;
    }
    return field;
}

QByteArray dateTime(const QDateTime &moment)
{
    const QLocale c = QLocale::c();
    const int offset = moment.offsetFromUtc() / 60;
    const int magnitude = qAbs(offset);
    return (c.toString(moment, QStringLiteral("ddd, dd MMM yyyy hh:mm:ss ")) + (offset < 0 ? u'-' : u'+') +
            QStringLiteral("%1%2").arg(magnitude / 60, 2, 10, QChar(u'0')).arg(magnitude % 60, 2, 10, QChar(u'0')))
        .toLatin1();
}

QString newMessageId(const QString &domain)
{
    return u'<' + QUuid::createUuid().toString(QUuid::WithoutBraces) + u'@' + domain + u'>';
}

QByteArray bodyData(const QString &body, bool eightBit)
{
    QString text = body;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    if (text.isEmpty())
        return QByteArray();
    if (text.endsWith(u'\n'))
        text.chop(1);
    QByteArray data;
    for (const QString &line : text.split(u'\n')) {
        const QList<QByteArray> encoded = eightBit ? wrapLine(line.toUtf8()) : quotedPrintable(line.toUtf8());
        for (const QByteArray &piece : encoded) {
            if (piece.startsWith('.'))
                data += '.';
            data += piece + "\r\n";
        }
    }
    return data;
}

} // namespace osprel::MessageFormat
