#pragma once
// The chamber program's side of the bus: one connection, one alert object, its methods, and every event it
// receives as one printed line.

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <functional>

namespace osprel {

class ChamberClient : public QObject
{
    Q_OBJECT
public:
    explicit ChamberClient(const QDBusConnection &connection, QObject *parent = nullptr);

    // Asks the factory for an alert object (which starts the server when it is not running).
    bool createObject(QString *error);
    const QString &objectPath() const { return m_path; }

    // Each returns false with the bus error in *error when the call itself fails.
    bool sendAlert(const QString &alert, bool *result, QString *error);
    bool serverCmd(const QString &form, qint16 command, const QVariant &custom, bool *result, QString *error);
    bool acknowledge(const QString &ticket, const QString &who, const QString &comment, bool *result, QString *error);
    bool clear(const QString &ticket, bool *result, QString *error);

    // Called with each event, already as its one-line text.
    void setEventHandler(std::function<void(const QString &)> handler) { m_onEvent = std::move(handler); }

    // The event's text: its name and its arguments, separated by blanks.
    static QString eventLine(const QDBusMessage &message);

private Q_SLOTS:
    void onSignal(const QDBusMessage &message);

private:
    QDBusConnection m_connection;
    QString m_path;
    std::function<void(const QString &)> m_onEvent;
};

} // namespace osprel
