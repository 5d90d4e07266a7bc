#pragma once
// The one exception type of the server: a run-time error with the classic BASIC error number and text.

#include <QString>
#include <exception>

namespace osprel {

// Error numbers, kept in one place. Where the same condition exists, the classic BASIC run-time numbering is used,
// so that a log line reads the same as the system's users have always seen it.
namespace Err {
constexpr int InvalidProcedureCall = 5;
constexpr int Overflow = 6;
constexpr int OutOfMemory = 7;
constexpr int SubscriptOutOfRange = 9;
constexpr int TypeMismatch = 13;
constexpr int InternalError = 51;
constexpr int BadFileName = 52;
constexpr int FileNotFound = 53;
constexpr int FileAlreadyOpen = 55;
constexpr int DeviceIoError = 57;
constexpr int PermissionDenied = 70;
constexpr int PathFileAccessError = 75;
constexpr int PathNotFound = 76;
constexpr int ObjectNotSet = 91;
constexpr int InvalidPropertyValue = 380;
constexpr int InvalidUseOfNull = 94;
constexpr int NoCurrentRecord = 3021;
constexpr int ConnectionClosed = 3709;         // no open database connection
constexpr int CommandTextNotSet = -2147217908; // a query with no text
constexpr int ProviderError = -2147467259;     // the database refused an operation
constexpr int IndexOutOfBounds = 35600;
} // namespace Err

// The standard description of an error number ("Overflow", "Subscript out of range", ...).
QString errorDescription(int number);

class RunError : public std::exception
{
public:
    explicit RunError(int number);
    RunError(int number, QString description);

    int number() const { return m_number; }
    const QString &description() const { return m_description; }
    const char *what() const noexcept override;

private:
    int m_number;
    QString m_description;
    QByteArray m_what;
};

// Throws RunError(number) with its standard description.
[[noreturn]] void raise(int number);
[[noreturn]] void raise(int number, const QString &description);

} // namespace osprel
