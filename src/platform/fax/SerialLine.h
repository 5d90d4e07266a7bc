#pragma once
// The serial line under the fax protocol: a byte pipe to the modem that a test can replace with a scripted or
// software modem.

#include <QObject>

namespace osprel {

class SerialLine : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    ~SerialLine() override = default;

    virtual bool open(const QString &port, QString *error) = 0;
    virtual void close() = 0;
    virtual bool isOpen() const = 0;
    virtual void write(const QByteArray &data) = 0;
    virtual QByteArray readAll() = 0;
    // Blocks until data arrives or msecs pass; only the device search uses it (it is allowed to block).
    virtual bool waitForReadyRead(int msecs) = 0;
    // Waits (bounded) until written data has left for the device; used before closing the line.
    virtual void flush(int msecs) = 0;
    // RTS/CTS on the port from the next open (the default); off for modems wired without it.
    virtual void setHardwareFlow(bool on) { Q_UNUSED(on) }
    // XON/XOFF from the modem stops and restarts our output while on. Switched on only while page data goes out: a
    // DC1 or DC3 in a modem's response must not be taken as flow control, and the XON that says "ready for data"
    // must reach the driver.
    virtual void setXonXoff(bool on) { Q_UNUSED(on) }

Q_SIGNALS:
    void readyRead();
    // The line broke (device unplugged, I/O error): the call in progress cannot go on.
    void failed(const QString &reason);
};

} // namespace osprel
