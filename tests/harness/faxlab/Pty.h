#pragma once
// A pseudo-terminal that plays the modem's side of a serial line: the master end for the modem, the slave end opened
// raw and kept open, and a stable symlink to the slave that a host opens as its serial port.

#include <QString>

namespace osprel::faxlab {

class Pty
{
public:
    Pty() = default;
    ~Pty();
    Pty(const Pty &) = delete;
    Pty &operator=(const Pty &) = delete;

    // Creates the pair and the symlink linkPath (replacing an old one).
    bool open(const QString &linkPath, QString *error);
    void close();

    int masterFd() const { return m_master; }
    const QString &linkPath() const { return m_link; }
    QString slavePath() const { return m_slavePath; }

    // Writes all of data to the master, waiting (bounded) while the host does not read.
    bool writeAll(const char *data, size_t len);

private:
    int m_master = -1;
    int m_slave = -1;
    QString m_link;
    QString m_slavePath;
};

} // namespace osprel::faxlab
