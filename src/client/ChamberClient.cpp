#include "ChamberClient.h"

#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>

namespace osprel {

namespace {
const QString kService = QStringLiteral("org.osprel.EmailFax");
const QString kFactoryInterface = QStringLiteral("org.osprel.EmailFax.Factory");
const QString kAlertInterface = QStringLiteral("org.osprel.EmailFax.clsAlertCls");

bool callBool(QDBusConnection &connection, const QDBusMessage &call, bool *result, QString *error)
{
    const QDBusMessage reply = connection.call(call);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        *error = reply.errorName() + QStringLiteral(": ") + reply.errorMessage();
        return false;
    }
    *result = reply.arguments().constFirst().toBool();
    return true;
}
} // namespace

ChamberClient::ChamberClient(const QDBusConnection &connection, QObject *parent)
    : QObject(parent), m_connection(connection)
{
}

bool ChamberClient::createObject(QString *error)
{
    const QDBusMessage call = QDBusMessage::createMethodCall(kService, QStringLiteral("/"), kFactoryInterface,
                                                             QStringLiteral("CreateObject"));
    const QDBusReply<QDBusObjectPath> reply = m_connection.call(call, QDBus::Block, 60000);
    if (!reply.isValid()) {
        *error = reply.error().name() + QStringLiteral(": ") + reply.error().message();
        return false;
    }
    m_path = reply.value().path();
    for (const char *name : {"AlertStatus", "ServerStatus", "ServerClosing", "AlertReady", "AlarmAcknowledged"})
        m_connection.connect(kService, m_path, kAlertInterface, QLatin1String(name), this,
                             SLOT(onSignal(QDBusMessage)));
    return true;
}

bool ChamberClient::sendAlert(const QString &alert, bool *result, QString *error)
{
    QDBusMessage call = QDBusMessage::createMethodCall(kService, m_path, kAlertInterface, QStringLiteral("SendAlert"));
    call << alert;
    return callBool(m_connection, call, result, error);
}

bool ChamberClient::serverCmd(const QString &form, qint16 command, const QVariant &custom, bool *result, QString *error)
{
    QDBusMessage call = QDBusMessage::createMethodCall(kService, m_path, kAlertInterface, QStringLiteral("ServerCmd"));
    // intCmd is int16 ("n"): an int32 would not match the method.
    call << form << QVariant::fromValue<qint16>(command) << QVariant::fromValue(QDBusVariant(custom));
    return callBool(m_connection, call, result, error);
}

QString ChamberClient::eventLine(const QDBusMessage &message)
{
    QString line = message.member();
    for (const QVariant &argument : message.arguments()) {
        line += u' ';
        if (argument.typeId() == QMetaType::Bool)
            line += argument.toBool() ? QStringLiteral("true") : QStringLiteral("false");
        else
            line += argument.toString();
    }
    return line;
}

void ChamberClient::onSignal(const QDBusMessage &message)
{
    if (m_onEvent)
        m_onEvent(eventLine(message));
}

bool ChamberClient::acknowledge(const QString &ticket, const QString &who, const QString &comment, bool *result,
                                QString *error)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(kService, m_path, kAlertInterface, QStringLiteral("Acknowledge"));
    call << ticket << who << comment;
    return callBool(m_connection, call, result, error);
}

bool ChamberClient::clear(const QString &ticket, bool *result, QString *error)
{
    QDBusMessage call = QDBusMessage::createMethodCall(kService, m_path, kAlertInterface, QStringLiteral("Clear"));
    call << ticket;
    return callBool(m_connection, call, result, error);
}

} // namespace osprel
