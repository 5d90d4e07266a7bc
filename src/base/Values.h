#pragma once
// Value rules shared by every subsystem: numeric prefix, 16- and 32-bit conversion with overflow,
// trimming of blanks, splitting, and the date and time texts the system writes.

#include <QDateTime>
#include <QString>
#include <QStringList>

namespace osprel {

// The numeric prefix of a text, as a BASIC Val reads it: leading blanks skipped, then an optional sign, digits with
// at most one decimal point and an optional exponent; blanks between digits are ignored; "&H" and "&O" prefixes
// read hexadecimal and octal. A text with no number in front gives 0.
double Val(const QString &text);

// Rounds to the nearest integer (a half goes to the even neighbour) and converts to 16 bits; outside
// -32768..32767 it raises Overflow (6): integers specified as 16-bit never wrap.
qint16 CInt(double value);
// The same for 32 bits.
qint32 CLng(double value);
// A stored number read as a number: blanks around it are allowed, anything else raises Type mismatch (13); the
// value is converted to 16 bits as CInt does.
qint16 strictInt(const QString &text);
// Adds to a 16-bit integer, raising Overflow instead of wrapping.
qint16 addInt(qint16 a, qint16 b);

// Removes leading and trailing blanks (code 32) only; tabs and line breaks stay.
QString Trim(const QString &text);

// Splits as BASIC's Split does: an empty text gives no pieces at all, otherwise every delimiter makes a piece,
// so "a;" gives "a" and "".
QStringList Split(const QString &text, const QString &delimiter);

// Element i of a split, or Subscript out of range (9).
const QString &element(const QStringList &pieces, int index);

// "mm/dd/yyyy" and "hh:mm:ss" (24-hour) of a moment.
QString dateText(const QDateTime &moment);
QString timeText(const QDateTime &moment);
// The platform's general date-and-time text, used where the system prints "the current date and time".
QString generalDateTime(const QDateTime &moment);

} // namespace osprel
