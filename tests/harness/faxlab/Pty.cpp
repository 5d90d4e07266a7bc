#include "Pty.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace osprel::faxlab {

Pty::~Pty()
{
    close();
}

bool Pty::open(const QString &linkPath, QString *error)
{
    close();
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY);
    if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0) {
        if (error)
            *error = QStringLiteral("posix_openpt: ") + QString::fromLocal8Bit(std::strerror(errno));
        close();
        return false;
    }
    m_slavePath = QString::fromLocal8Bit(::ptsname(m_master));
    // Keep the slave open ourselves: without it, reads on the master fail with EIO while no host has the port.
    m_slave = ::open(m_slavePath.toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
    if (m_slave < 0) {
        if (error)
            *error = QStringLiteral("open slave: ") + QString::fromLocal8Bit(std::strerror(errno));
        close();
        return false;
    }
    // Raw before any host opens it, or the modem's own output echoes back into its command interpreter.
    termios tio{};
    ::tcgetattr(m_slave, &tio);
    ::cfmakeraw(&tio);
    ::tcsetattr(m_slave, TCSANOW, &tio);
    ::fcntl(m_master, F_SETFL, ::fcntl(m_master, F_GETFL) | O_NONBLOCK);

    m_link = linkPath;
    QFile::remove(linkPath);
    if (::symlink(m_slavePath.toLocal8Bit().constData(), linkPath.toLocal8Bit().constData()) != 0) {
        if (error)
            *error = QStringLiteral("symlink: ") + QString::fromLocal8Bit(std::strerror(errno));
        close();
        return false;
    }
    return true;
}

void Pty::close()
{
    if (!m_link.isEmpty())
        QFile::remove(m_link);
    m_link.clear();
    if (m_slave >= 0)
        ::close(m_slave);
    if (m_master >= 0)
        ::close(m_master);
    m_slave = m_master = -1;
}

bool Pty::writeAll(const char *data, size_t len)
{
    int idleRounds = 0;
    while (len > 0 && m_master >= 0) {
        const ssize_t n = ::write(m_master, data, len);
        if (n > 0) {
            data += n;
            len -= size_t(n);
            idleRounds = 0;
            continue;
        }
        if (n < 0 && errno != EAGAIN && errno != EINTR)
            return false;
        // The host is not reading; give up after two seconds rather than hang the modem.
        if (++idleRounds > 200)
            return false;
        pollfd p{m_master, POLLOUT, 0};
        ::poll(&p, 1, 10);
    }
    return len == 0;
}

} // namespace osprel::faxlab
