#pragma once
// A serial line for unit tests: what the code writes is recorded, what the modem "says" is fed in by the test.

#include "SerialLine.h"

namespace osprel::faxlab {

class FakeLine : public SerialLine
{
    Q_OBJECT
public:
    using SerialLine::SerialLine;

    bool open(const QString &, QString *) override { return m_open = true; }
    void close() override { m_open = false; }
    bool isOpen() const override { return m_open; }
    void write(const QByteArray &data) override { m_written += data; }
    QByteArray readAll() override
    {
        QByteArray out;
        out.swap(m_pending);
        return out;
    }
    bool waitForReadyRead(int) override { return !m_pending.isEmpty(); }
    void flush(int) override {}

    // The modem says data; readyRead follows at once.
    void feed(const QByteArray &data)
    {
        m_pending += data;
        Q_EMIT readyRead();
    }
    const QByteArray &written() const { return m_written; }
    QByteArray takeWritten()
    {
        QByteArray out;
        out.swap(m_written);
        return out;
    }

private:
    bool m_open = false;
    QByteArray m_pending, m_written;
};

} // namespace osprel::faxlab
