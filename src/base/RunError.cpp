#include "RunError.h"

#include <QHash>

namespace osprel {

QString errorDescription(int number)
{
    static const QHash<int, QString> catalogue = {
        {Err::InvalidProcedureCall, QStringLiteral("Invalid procedure call or argument")},
        {Err::Overflow, QStringLiteral("Overflow")},
        {Err::OutOfMemory, QStringLiteral("Out of memory")},
        {Err::SubscriptOutOfRange, QStringLiteral("Subscript out of range")},
        {Err::TypeMismatch, QStringLiteral("Type mismatch")},
        {Err::InternalError, QStringLiteral("Internal error")},
        {Err::BadFileName, QStringLiteral("Bad file name or number")},
        {Err::FileNotFound, QStringLiteral("File not found")},
        {Err::FileAlreadyOpen, QStringLiteral("File already open")},
        {Err::DeviceIoError, QStringLiteral("Device I/O error")},
        {Err::PermissionDenied, QStringLiteral("Permission denied")},
        {Err::PathFileAccessError, QStringLiteral("Path/File access error")},
        {Err::PathNotFound, QStringLiteral("Path not found")},
        {Err::ObjectNotSet, QStringLiteral("Object variable or With block variable not set")},
        {Err::InvalidPropertyValue, QStringLiteral("Invalid property value")},
        {Err::InvalidUseOfNull, QStringLiteral("Invalid use of Null")},
        {Err::ConnectionClosed, QStringLiteral("The connection cannot be used to perform this operation. It is either "
                                               "closed or invalid in this context.")},
        {Err::CommandTextNotSet, QStringLiteral("Command text was not set for the command object.")},
        {Err::ProviderError, QStringLiteral("Unspecified error")},
        {Err::NoCurrentRecord, QStringLiteral("Either BOF or EOF is True, or the current record has been deleted. "
                                              "Requested operation requires a current record.")},
        {Err::IndexOutOfBounds, QStringLiteral("Index out of bounds")},
    };
    return catalogue.value(number, QStringLiteral("Application-defined or object-defined error"));
}

RunError::RunError(int number) : RunError(number, errorDescription(number)) {}

RunError::RunError(int number, QString description)
    : m_number(number), m_description(std::move(description)), m_what(m_description.toUtf8())
{
}

const char *RunError::what() const noexcept
{
    return m_what.constData();
}

void raise(int number)
{
    throw RunError(number);
}

void raise(int number, const QString &description)
{
    throw RunError(number, description);
}

} // namespace osprel
