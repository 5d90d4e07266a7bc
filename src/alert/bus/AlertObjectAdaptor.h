#pragma once
// One alert object on the bus: its two methods, callable by its owner only, and its four events, sent to its owner
// only.

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusVariant>
#include <QObject>
#include <QPointer>

#include "clsAlertCls.h"

namespace osprel {

class AlertObjectAdaptor : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.osprel.EmailFax.clsAlertCls")
    Q_CLASSINFO("D-Bus Introspection", "  <interface name=\"org.osprel.EmailFax.clsAlertCls\">\n"
                                       "    <method name=\"SendAlert\">\n"
                                       "      <arg name=\"strAlertString\" type=\"s\" direction=\"in\"/>\n"
                                       "      <arg type=\"b\" direction=\"out\"/>\n"
                                       "    </method>\n"
                                       "    <method name=\"ServerCmd\">\n"
                                       "      <arg name=\"strFormName\" type=\"s\" direction=\"in\"/>\n"
                                       "      <arg name=\"intCmd\" type=\"n\" direction=\"in\"/>\n"
                                       "      <arg name=\"CustomStr\" type=\"v\" direction=\"in\"/>\n"
                                       "      <arg type=\"b\" direction=\"out\"/>\n"
                                       "    </method>\n"
                                       "    <method name=\"Heartbeat\">\n"
                                       "      <arg name=\"seconds\" type=\"u\" direction=\"in\"/>\n"
                                       "      <arg type=\"b\" direction=\"out\"/>\n"
                                       "    </method>\n"
                                       "    <method name=\"Acknowledge\">\n"
                                       "      <arg name=\"ticket\" type=\"s\" direction=\"in\"/>\n"
                                       "      <arg name=\"who\" type=\"s\" direction=\"in\"/>\n"
                                       "      <arg name=\"comment\" type=\"s\" direction=\"in\"/>\n"
                                       "      <arg type=\"b\" direction=\"out\"/>\n"
                                       "    </method>\n"
                                       "    <method name=\"Clear\">\n"
                                       "      <arg name=\"ticket\" type=\"s\" direction=\"in\"/>\n"
                                       "      <arg type=\"b\" direction=\"out\"/>\n"
                                       "    </method>\n"
                                       "    <signal name=\"AlertStatus\">\n"
                                       "      <arg name=\"lngAlertID\" type=\"i\"/>\n"
                                       "      <arg name=\"intEmailFax\" type=\"n\"/>\n"
                                       "      <arg name=\"blnStatus\" type=\"b\"/>\n"
                                       "    </signal>\n"
                                       "    <signal name=\"ServerStatus\">\n"
                                       "      <arg name=\"blnBusy\" type=\"b\"/>\n"
                                       "      <arg name=\"intEmailStatus\" type=\"n\"/>\n"
                                       "      <arg name=\"intFaxStatus\" type=\"n\"/>\n"
                                       "    </signal>\n"
                                       "    <signal name=\"ServerClosing\"/>\n"
                                       "    <signal name=\"AlertReady\">\n"
                                       "      <arg name=\"strAlertString\" type=\"s\"/>\n"
                                       "    </signal>\n"
                                       "    <signal name=\"AlarmAcknowledged\">\n"
                                       "      <arg name=\"ticket\" type=\"s\"/>\n"
                                       "      <arg name=\"who\" type=\"s\"/>\n"
                                       "    </signal>\n"
                                       "  </interface>\n")
public:
    AlertObjectAdaptor(const QDBusConnection &connection, const QString &path, const QString &owner,
                       clsAlertCls *object);

    const QString &path() const { return m_path; }
    const QString &owner() const { return m_owner; }
    clsAlertCls *object() const { return m_object; }

public Q_SLOTS:
    bool SendAlert(const QString &strAlertString);
    bool ServerCmd(const QString &strFormName, short intCmd, const QDBusVariant &CustomStr);
    bool Heartbeat(uint seconds);
    bool Acknowledge(const QString &ticket, const QString &who, const QString &comment);
    bool Clear(const QString &ticket);

private:
    bool callerIsOwner();
    // "command line" when the caller is osprel-client, else "bus".
    QString callerRoad();
    void emitToOwner(const QString &name, const QVariantList &arguments);

    QDBusConnection m_connection;
    QString m_path;
    QString m_owner;
    QPointer<clsAlertCls> m_object;
};

} // namespace osprel
