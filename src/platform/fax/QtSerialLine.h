#pragma once
// The serial line on a real port (or a pseudo-terminal) through QSerialPort.

#include "SerialLine.h"

class QSerialPort;

namespace osprel {

class QtSerialLine : public SerialLine
{
    Q_OBJECT
public:
    explicit QtSerialLine(QObject *parent = nullptr);
    ~QtSerialLine() override;

    bool open(const QString &port, QString *error) override;
    void close() override;
    bool isOpen() const override;
    void write(const QByteArray &data) override;
    QByteArray readAll() override;
    bool waitForReadyRead(int msecs) override;
    void flush(int msecs) override;
    void setHardwareFlow(bool on) override { m_hardwareFlow = on; }
    void setXonXoff(bool on) override;

private:
    QSerialPort *m_port;
    bool m_hardwareFlow = true;
};

} // namespace osprel
