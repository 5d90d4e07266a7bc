#include "InProcessServer.h"

#include "FormWiring.h"
#include "Globals.h"
#include "TimeScale.h"

#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QTest>

namespace {
const QString kService = QStringLiteral("org.osprel.EmailFax");
const QString kAlertInterface = QStringLiteral("org.osprel.EmailFax.clsAlertCls");
} // namespace

InProcessServer::InProcessServer(double timeScale) : m_timeScale(timeScale) {}

InProcessServer::~InProcessServer()
{
    osprel::g.gblnServerLinked = false;
    m_busServer.reset();
    m_bus.reset();
    m_server.reset();
    m_window.reset();
    m_lists.reset();
    m_log.reset();
    osprel::TimeScale::setFactor(1);
}

void InProcessServer::mailToDuty(osprel::Database &database, const QString &mailServer)
{
    database.run(QStringLiteral("INSERT INTO Contacts (LastName, FirstName, EMailEnabled, EmailName)"
                                " VALUES ('Duty', 'Lab', 1, 'duty@lab.test')"));
    database.run(QStringLiteral("UPDATE SetupComm SET EmailServer = ?"), {mailServer});
}

bool InProcessServer::start(const std::function<void(osprel::Database &)> &prepare, QString *error)
{
    osprel::TimeScale::setFactor(m_timeScale);
    osprel::resetGlobals();
    osprel::g.gstrAppPath = m_home.path();
    {
        osprel::Database setup;
        setup.DBInitADO(m_home.path());
        if (prepare)
            prepare(setup);
    }
    makeServer();

    m_bus = std::make_unique<PrivateBus>(PrivateBus::serverEnvironment(m_home.path(), m_timeScale));
    if (!m_bus->start(error))
        return false;
    m_busServer = std::make_unique<osprel::BusServer>(m_bus->connect(QStringLiteral("server")));
    if (!m_busServer->start(error))
        return false;
    connect(m_busServer.get(), &osprel::BusServer::objectCreated, this,
            [this](osprel::clsAlertCls *object) { m_object = object; });
    connectLink();

    QDBusConnection chamber = m_bus->connect(QStringLiteral("chamber"));
    m_chamber = chamber.name();
    QDBusPendingCall create = chamber.asyncCall(QDBusMessage::createMethodCall(
        kService, QStringLiteral("/"), QStringLiteral("org.osprel.EmailFax.Factory"), QStringLiteral("CreateObject")));
    if (!QTest::qWaitFor([&] { return create.isFinished(); }, 5000) || create.isError()) {
        *error = QStringLiteral("CreateObject: ") + create.error().message();
        return false;
    }
    m_path = create.reply().arguments().value(0).value<QDBusObjectPath>().path();
    for (const char *name : {"AlertStatus", "ServerStatus", "ServerClosing", "AlertReady", "AlarmAcknowledged"})
        chamber.connect(QString(), m_path, kAlertInterface, QLatin1String(name), this, SLOT(record(QDBusMessage)));
    return true;
}

void InProcessServer::makeServer()
{
    m_log = std::make_unique<osprel::Log>(m_home.path());
    m_lists = std::make_unique<osprel::FormLists>();
    m_window = std::make_unique<osprel::MainWindow>(*m_lists, *m_log);
    m_server = std::make_unique<osprel::EmailFaxServer>(*m_log, *m_lists, m_window->ports());
    osprel::wireForm(*m_window, *m_server);
    m_server->Form_Load();
}

void InProcessServer::connectLink()
{
    connect(m_busServer.get(), &osprel::BusServer::ownerLeft, &m_server->link(), &osprel::AlertLink::linkedClientLeft);
    connect(m_busServer.get(), &osprel::BusServer::objectReleased, &m_server->link(),
            &osprel::AlertLink::linkedObjectReleased);
}

void InProcessServer::restart()
{
    osprel::g.gblnServerLinked = false;
    m_server->unload(osprel::EmailFaxServer::ByCode);
    m_server.reset();
    m_window.reset();
    m_lists.reset();
    m_log.reset();
    osprel::resetGlobals();
    osprel::g.gstrAppPath = m_home.path();
    makeServer();
    connectLink();
}

bool InProcessServer::call(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(kService, m_path, kAlertInterface, method);
    message.setArguments(arguments);
    QDBusPendingCall pending = QDBusConnection(m_chamber).asyncCall(message);
    return QTest::qWaitFor([&] { return pending.isFinished(); }, 5000) && !pending.isError() &&
           pending.reply().arguments().value(0).toBool();
}

bool InProcessServer::link()
{
    return call(QStringLiteral("ServerCmd"), {QStringLiteral("Vantor32"), QVariant::fromValue<short>(1),
                                              QVariant::fromValue(QDBusVariant(QString()))});
}

bool InProcessServer::sendAlert(const QString &alert)
{
    return call(QStringLiteral("SendAlert"), {alert});
}

QList<QDBusMessage> InProcessServer::events(const QString &name) const
{
    QList<QDBusMessage> matching;
    for (const QDBusMessage &event : m_events) {
        if (event.member() == name)
            matching.append(event);
    }
    return matching;
}
