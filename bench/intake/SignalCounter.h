#pragma once
// Receives the alert object's events on the client side and counts them, so that the bench can check that every
// AlertReady arrived and was handled.

#include <QDBusMessage>
#include <QObject>

class SignalCounter : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    qint64 count() const { return m_count; }
    void reset() { m_count = 0; }

public Q_SLOTS:
    void onSignal(const QDBusMessage &message);

private:
    qint64 m_count = 0;
};
