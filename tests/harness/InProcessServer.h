#pragma once
// The whole server in the test's own process, with its window and a database prepared for the test, served on a
// real private bus, and a chamber program's connection to it: the lists and the database stay in reach.

#include "BusServer.h"
#include "EmailFaxServer.h"
#include "Log.h"
#include "MainWindow.h"
#include "PrivateBus.h"

#include <QDBusMessage>
#include <QObject>
#include <QTemporaryDir>
#include <functional>
#include <memory>

class InProcessServer : public QObject
{
    Q_OBJECT
public:
    explicit InProcessServer(double timeScale);
    ~InProcessServer() override;

    // For prepare: duty@lab.test as the one e-mail recipient, and mailServer ("host:port") as the mail server.
    static void mailToDuty(osprel::Database &database, const QString &mailServer);
    // prepare runs on the new database before the server loads it.
    bool start(const std::function<void(osprel::Database &)> &prepare, QString *error);
    // Closes the server and its window as at the end of a run and makes them anew on the same data folder, as a
    // restart of the program does; the bus, its objects and the chamber program's connection stay. The chamber
    // program links again with link().
    void restart();

    osprel::EmailFaxServer &server() { return *m_server; }
    osprel::MainWindow &window() { return *m_window; }
    osprel::clsAlertCls *object() const { return m_object; }
    QString home() const { return m_home.path(); }
    // The private bus's address, for chamber programs in other processes.
    QString busAddress() const { return m_bus ? m_bus->address() : QString(); }

    // Calls of the chamber program's object, awaited with the event loop running (the server answers on this
    // thread); false when the call fails or returns false.
    bool call(const QString &method, const QVariantList &arguments);
    bool link();
    bool sendAlert(const QString &alert);
    // Every event the chamber program received, in order.
    const QList<QDBusMessage> &events() const { return m_events; }
    QList<QDBusMessage> events(const QString &name) const;

private Q_SLOTS:
    void record(const QDBusMessage &message) { m_events.append(message); }

private:
    void makeServer();
    void connectLink();

    double m_timeScale;
    QTemporaryDir m_home;
    std::unique_ptr<osprel::Log> m_log;
    std::unique_ptr<osprel::FormLists> m_lists;
    std::unique_ptr<osprel::MainWindow> m_window;
    std::unique_ptr<osprel::EmailFaxServer> m_server;
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<osprel::BusServer> m_busServer;
    QString m_chamber;
    QString m_path;
    osprel::clsAlertCls *m_object = nullptr;
    QList<QDBusMessage> m_events;
};
