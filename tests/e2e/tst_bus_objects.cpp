// Alert objects on a real private bus, the server's side in this process: each event reaches the object's owner
// only, with the argument types a chamber program expects.

#include "BusServer.h"
#include "PrivateBus.h"
#include "clsAlertCls.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusPendingReply>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>
#include <optional>

using namespace osprel;

namespace {
const QString kService = QStringLiteral("org.osprel.EmailFax");
const QString kAlertInterface = QStringLiteral("org.osprel.EmailFax.clsAlertCls");

// Records every signal of one alert object that reaches one client connection.
class EventRecorder : public QObject
{
    Q_OBJECT
public:
    EventRecorder(QDBusConnection connection, const QString &path)
    {
        for (const char *name : {"AlertStatus", "ServerStatus", "ServerClosing", "AlertReady"})
            connection.connect(QString(), path, kAlertInterface, QLatin1String(name), this, SLOT(record(QDBusMessage)));
    }
    QList<QDBusMessage> events;
public Q_SLOTS:
    void record(const QDBusMessage &message) { events.append(message); }
};

// The server answers on this same thread, so a call is awaited with the event loop running.
template <typename T> T await(const QDBusPendingCall &call)
{
    QDBusPendingReply<T> reply(call);
    if (!QTest::qWaitFor([&] { return reply.isFinished(); }, 5000))
        qWarning("no reply within 5 s");
    return reply.value();
}
} // namespace

class TestBusObjects : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void eventsGoToTheOwnerOnlyWithTheirSignatures()
    {
        QTemporaryDir home;
        PrivateBus bus(PrivateBus::serverEnvironment(home.path(), 1));
        QString error;
        QVERIFY2(bus.start(&error), qPrintable(error));
        BusServer server(bus.connect(QStringLiteral("server")));
        QVERIFY2(server.start(&error), qPrintable(error));
        QSignalSpy created(&server, &BusServer::objectCreated);

        std::optional<QDBusConnection> ownerConnection = bus.connect(QStringLiteral("owner"));
        QDBusConnection &owner = *ownerConnection;
        QDBusConnection stranger = bus.connect(QStringLiteral("stranger"));
        const QDBusMessage create =
            QDBusMessage::createMethodCall(kService, QStringLiteral("/"), QStringLiteral("org.osprel.EmailFax.Factory"),
                                           QStringLiteral("CreateObject"));
        const QString path = await<QDBusObjectPath>(owner.asyncCall(create)).path();
        QCOMPARE(path, QStringLiteral("/clsAlertCls/1"));
        QCOMPARE(created.count(), 1);
        auto *object = created.at(0).at(0).value<clsAlertCls *>();
        QVERIFY(object);

        auto ownerEvents = std::make_unique<EventRecorder>(owner, path);
        EventRecorder strangerEvents(stranger, path);
        object->SendAlertStatus(123, 1, true);
        object->SendServerStatus(true, 3, 4);
        object->SendServerClosing();
        Q_EMIT object->AlertReady(QStringLiteral("1|a|b|c|d|5|t"));
        QTRY_COMPARE(ownerEvents->events.size(), 4);
        const QStringList signatures = {QStringLiteral("inb"), QStringLiteral("bnn"), QString(), QStringLiteral("s")};
        for (int i = 0; i < 4; ++i)
            QCOMPARE(ownerEvents->events.at(i).signature(), signatures.at(i));
        QCOMPARE(ownerEvents->events.at(0).arguments(), QVariantList({123, short(1), true}));
        QCOMPARE(ownerEvents->events.at(1).arguments(), QVariantList({true, short(3), short(4)}));

        // The stranger may not call the owner's object, and hears none of its events.
        QDBusMessage send =
            QDBusMessage::createMethodCall(kService, path, kAlertInterface, QStringLiteral("SendAlert"));
        send << QStringLiteral("2|a|b|c|d|5|t");
        QDBusPendingCall denied = stranger.asyncCall(send);
        QTRY_VERIFY(denied.isFinished());
        QCOMPARE(denied.error().type(), QDBusError::AccessDenied);
        QCOMPARE(strangerEvents.events.size(), 0);

        // Leaving the bus drops the owner's objects.
        const QString ownerName = owner.name();
        ownerEvents.reset();
        ownerConnection.reset();
        QDBusConnection::disconnectFromBus(ownerName);
        QTRY_COMPARE(server.objectCount(), 0);
    }
};

QTEST_GUILESS_MAIN(TestBusObjects)
#include "tst_bus_objects.moc"
