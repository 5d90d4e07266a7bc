#pragma once
// Turns SIGTERM, SIGINT and SIGHUP into a Qt signal on the main thread: the system is shutting the server down.

#include <QObject>

class QSocketNotifier;

namespace osprel {

class ShutdownSignal : public QObject
{
    Q_OBJECT
public:
    explicit ShutdownSignal(QObject *parent = nullptr);

Q_SIGNALS:
    void requested();

private:
    QSocketNotifier *m_notifier = nullptr;
};

} // namespace osprel
