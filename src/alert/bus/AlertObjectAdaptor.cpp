#include "AlertObjectAdaptor.h"

#include "BusNames.h"
#include "clsAlertCls.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QFile>

namespace osprel {

AlertObjectAdaptor::AlertObjectAdaptor(const QDBusConnection &connection, const QString &path, const QString &owner,
                                       clsAlertCls *object)
    : m_connection(connection), m_path(path), m_owner(owner), m_object(object)
{
    // Every event goes to the owner alone, with 16-bit arguments as int16 ("n").
    connect(object, &clsAlertCls::AlertStatus, this, [this](qint32 id, qint16 emailFax, bool status) {
        emitToOwner(QStringLiteral("AlertStatus"),
                    {QVariant::fromValue<qint32>(id), QVariant::fromValue<qint16>(emailFax),
                     QVariant::fromValue<bool>(status)});
    });
    connect(object, &clsAlertCls::ServerStatus, this, [this](bool busy, qint16 email, qint16 fax) {
        emitToOwner(
            QStringLiteral("ServerStatus"),
            {QVariant::fromValue<bool>(busy), QVariant::fromValue<qint16>(email), QVariant::fromValue<qint16>(fax)});
    });
    connect(object, &clsAlertCls::ServerClosing, this, [this] { emitToOwner(QStringLiteral("ServerClosing"), {}); });
    connect(object, &clsAlertCls::AlertReady, this,
            [this](const QString &text) { emitToOwner(QStringLiteral("AlertReady"), {QVariant(text)}); });
    connect(object, &clsAlertCls::AlarmAcknowledged, this, [this](const QString &ticket, const QString &who) {
        emitToOwner(QStringLiteral("AlarmAcknowledged"), {QVariant(ticket), QVariant(who)});
    });
}

bool AlertObjectAdaptor::SendAlert(const QString &strAlertString)
{
    if (!callerIsOwner() || !m_object)
        return false;
    if (!m_object->SendAlert(strAlertString))
        return false;
    // Accepted means on disk: the answer waits for the commit that stores the alert, which the alerts arriving in
    // the same turn of the event loop share.
    if (calledFromDBus()) {
        setDelayedReply(true);
        m_object->whenStored([connection = connection(), call = message()](bool stored) {
            connection.send(call.createReply(QVariant::fromValue(stored)));
        });
    }
    return true;
}

bool AlertObjectAdaptor::ServerCmd(const QString &strFormName, short intCmd, const QDBusVariant &CustomStr)
{
    if (!callerIsOwner() || !m_object)
        return false;
    return m_object->ServerCmd(strFormName, intCmd, CustomStr.variant());
}

bool AlertObjectAdaptor::Heartbeat(uint seconds)
{
    if (!callerIsOwner() || !m_object)
        return false;
    return m_object->Heartbeat(seconds);
}

bool AlertObjectAdaptor::Acknowledge(const QString &ticket, const QString &who, const QString &comment)
{
    if (!callerIsOwner() || !m_object)
        return false;
    return m_object->Acknowledge(ticket, who, comment, callerRoad());
}

bool AlertObjectAdaptor::Clear(const QString &ticket)
{
    if (!callerIsOwner() || !m_object)
        return false;
    return m_object->Clear(ticket, callerRoad());
}

// The bus knows the calling process; its name tells a person at the command line from a chamber program.
QString AlertObjectAdaptor::callerRoad()
{
    if (calledFromDBus()) {
        if (QDBusConnectionInterface *bus = connection().interface()) {
            const QDBusReply<uint> pid = bus->servicePid(message().service());
            if (pid.isValid() && pid.value() > 0) {
                QFile comm(QStringLiteral("/proc/%1/comm").arg(pid.value()));
                if (comm.open(QIODevice::ReadOnly) && comm.readAll().trimmed() == "osprel-client")
                    return QStringLiteral("command line");
            }
        }
    }
    return QStringLiteral("bus");
}

bool AlertObjectAdaptor::callerIsOwner()
{
    if (!calledFromDBus() || message().service() == m_owner)
        return true;
    sendErrorReply(QDBusError::AccessDenied, QStringLiteral("This alert object belongs to another client."));
    return false;
}

void AlertObjectAdaptor::emitToOwner(const QString &name, const QVariantList &arguments)
{
    QDBusMessage signal = QDBusMessage::createTargetedSignal(m_owner, m_path, bus::kAlertInterface, name);
    signal.setArguments(arguments);
    m_connection.send(signal);
}

} // namespace osprel
