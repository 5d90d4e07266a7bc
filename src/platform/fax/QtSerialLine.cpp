#include "QtSerialLine.h"

#include <QDeadlineTimer>
#include <QSerialPort>
#include <termios.h>

namespace osprel {

QtSerialLine::QtSerialLine(QObject *parent) : SerialLine(parent), m_port(new QSerialPort(this))
{
    connect(m_port, &QSerialPort::readyRead, this, &SerialLine::readyRead);
    connect(m_port, &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError e) {
        switch (e) {
        case QSerialPort::NoError:
        case QSerialPort::TimeoutError:
        // Modem-control lines (TIOCMGET, TIOCMBIS) fail with ENOTTY on a pseudo-terminal: nothing is lost.
        case QSerialPort::UnsupportedOperationError:
            return;
        case QSerialPort::ResourceError:
        case QSerialPort::ReadError:
        case QSerialPort::WriteError:
            if (m_port->isOpen())
                Q_EMIT failed(m_port->errorString());
            return;
        default:
            return;
        }
    });
}

QtSerialLine::~QtSerialLine() = default;

bool QtSerialLine::open(const QString &port, QString *error)
{
    close();
    m_port->setPortName(port);
    // Fax modems take 19200 bit/s at least for 14400 bit/s pages; RTS/CTS is the flow control of T.31 and
    // EIA-592 (+FLO=2), accepted and ignored on a pseudo-terminal.
    m_port->setBaudRate(QSerialPort::Baud38400);
    m_port->setDataBits(QSerialPort::Data8);
    m_port->setParity(QSerialPort::NoParity);
    m_port->setStopBits(QSerialPort::OneStop);
    m_port->setFlowControl(m_hardwareFlow ? QSerialPort::HardwareControl : QSerialPort::NoFlowControl);
    if (!m_port->open(QIODevice::ReadWrite)) {
        if (error)
            *error = m_port->errorString();
        return false;
    }
    m_port->clear();
    return true;
}

void QtSerialLine::close()
{
    if (m_port->isOpen())
        m_port->close();
}

bool QtSerialLine::isOpen() const
{
    return m_port->isOpen();
}

void QtSerialLine::write(const QByteArray &data)
{
    if (m_port->isOpen())
        m_port->write(data);
}

QByteArray QtSerialLine::readAll()
{
    return m_port->readAll();
}

bool QtSerialLine::waitForReadyRead(int msecs)
{
    return m_port->isOpen() && m_port->waitForReadyRead(msecs);
}

// The kernel's own XON/XOFF (IXON) stops the port's output within a character of the modem's XOFF; done here in
// the program it would come a buffer too late. Set directly: Qt's software flow control adds IXANY, with which any
// byte from the modem would restart the output, and IXOFF, which the modem does not expect.
void QtSerialLine::setXonXoff(bool on)
{
    if (!m_port->isOpen())
        return;
    const int fd = int(m_port->handle());
    termios tio{};
    if (::tcgetattr(fd, &tio) != 0)
        return;
    tio.c_iflag &= ~tcflag_t(IXANY | IXOFF);
    if (on)
        tio.c_iflag |= IXON;
    else
        tio.c_iflag &= ~tcflag_t(IXON);
    ::tcsetattr(fd, TCSANOW, &tio);
}

void QtSerialLine::flush(int msecs)
{
    QDeadlineTimer deadline(msecs);
    while (m_port->isOpen() && m_port->bytesToWrite() > 0 && !deadline.hasExpired())
        m_port->waitForBytesWritten(int(deadline.remainingTime()));
}

} // namespace osprel
