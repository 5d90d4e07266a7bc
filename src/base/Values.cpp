#include "Values.h"

#include "RunError.h"

#include <cmath>

namespace osprel {

namespace {
bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

double radixPrefix(const QString &text, int pos, int radix)
{
    double value = 0;
    for (; pos < text.size(); ++pos) {
        const int digit = QString(text.at(pos)).toInt(nullptr, 16);
        const bool isDigit =
            text.at(pos).isDigit() || (radix == 16 && QStringLiteral("abcdefABCDEF").contains(text.at(pos)));
        if (!isDigit || digit >= radix)
            break;
        value = value * radix + digit;
    }
    return value;
}
} // namespace

double Val(const QString &text)
{
    int pos = 0;
    while (pos < text.size() && isBlank(text.at(pos)))
        ++pos;
    if (pos + 1 < text.size() && text.at(pos) == u'&') {
        const QChar kind = text.at(pos + 1).toUpper();
        if (kind == u'H')
            return radixPrefix(text, pos + 2, 16);
        if (kind == u'O')
            return radixPrefix(text, pos + 2, 8);
    }
    QString number;
    bool seenPoint = false, seenDigit = false, seenExponent = false;
    for (; pos < text.size(); ++pos) {
        const QChar c = text.at(pos);
        if (isBlank(c))
            continue; // Val ignores blanks inside a number
        if (c.isDigit() && c.unicode() < 128) {
            number += c;
            seenDigit = true;
        } else if ((c == u'+' || c == u'-') && number.isEmpty()) {
            number += c;
        } else if (c == u'.' && !seenPoint && !seenExponent) {
            number += c;
            seenPoint = true;
        } else if ((c == u'e' || c == u'E' || c == u'd' || c == u'D') && seenDigit && !seenExponent) {
            // Only take the exponent when digits follow it.
            int next = pos + 1;
            while (next < text.size() && isBlank(text.at(next)))
                ++next;
            QString exponent = QStringLiteral("e");
            if (next < text.size() && (text.at(next) == u'+' || text.at(next) == u'-'))
                exponent += text.at(next++);
            const int digitsStart = next;
            while (next < text.size() && text.at(next).isDigit())
                exponent += text.at(next++);
            if (next == digitsStart)
                break;
            number += exponent;
            seenExponent = true;
            break;
        } else {
            break;
        }
    }
    if (!seenDigit)
        return 0;
    const double value = number.toDouble();
    return std::isfinite(value) ? value : 0;
}

qint16 CInt(double value)
{
    const double rounded = std::nearbyint(value); // the default rounding mode rounds a half to even
    if (!(rounded >= -32768.0 && rounded <= 32767.0))
        raise(Err::Overflow);
    return static_cast<qint16>(rounded);
}

qint16 strictInt(const QString &text)
{
    bool ok = false;
    const double value = Trim(text).toDouble(&ok);
    if (!ok)
        raise(Err::TypeMismatch);
    return CInt(value);
}

qint32 CLng(double value)
{
    const double rounded = std::nearbyint(value);
    if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0))
        raise(Err::Overflow);
    return static_cast<qint32>(rounded);
}

qint16 addInt(qint16 a, qint16 b)
{
    return CInt(double(a) + double(b));
}

QString Trim(const QString &text)
{
    int begin = 0, end = text.size();
    while (begin < end && text.at(begin) == u' ')
        ++begin;
    while (end > begin && text.at(end - 1) == u' ')
        --end;
    return text.mid(begin, end - begin);
}

QStringList Split(const QString &text, const QString &delimiter)
{
    if (text.isEmpty())
        return {};
    return text.split(delimiter, Qt::KeepEmptyParts);
}

const QString &element(const QStringList &pieces, int index)
{
    if (index < 0 || index >= pieces.size())
        raise(Err::SubscriptOutOfRange);
    return pieces.at(index);
}

QString dateText(const QDateTime &moment)
{
    return moment.toString(QStringLiteral("MM/dd/yyyy"));
}

QString timeText(const QDateTime &moment)
{
    return moment.toString(QStringLiteral("HH:mm:ss"));
}

QString generalDateTime(const QDateTime &moment)
{
    return moment.toString(QStringLiteral("M/d/yyyy h:mm:ss AP"));
}

} // namespace osprel
