#include "Log.h"

#include "ErrorReport.h"
#include "RunError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cstdio>

namespace osprel {

namespace {
Log *g_instance = nullptr;
const QByteArray kLineEnd = QByteArrayLiteral("\r\n");

[[noreturn]] void raiseFileError(const QFile &file)
{
    switch (file.error()) {
    case QFileDevice::PermissionsError:
        raise(Err::PermissionDenied);
    case QFileDevice::OpenError:
        raise(QFileInfo::exists(file.fileName()) ? Err::PathFileAccessError : Err::PathNotFound);
    default:
        raise(Err::DeviceIoError);
    }
}

void openOrRaise(QFile &file, QIODevice::OpenMode mode)
{
    if (!file.open(mode))
        raiseFileError(file);
}

void writeOrRaise(QFile &file, const QByteArray &bytes)
{
    if (file.write(bytes) != bytes.size())
        raiseFileError(file);
}
} // namespace

Log::Log(const QString &folder, QObject *parent) : QObject(parent), m_folder(folder)
{
    g_instance = this;
    setErrorSink([](const QString &text) { osprel::DumpStr(text); });
}

Log::~Log()
{
    if (g_instance == this) {
        g_instance = nullptr;
        setErrorSink(nullptr);
    }
}

Log *Log::instance()
{
    return g_instance;
}

QString Log::logPath() const
{
    return m_folder + QStringLiteral("/EMailFaxLog.txt");
}

QString Log::workPath() const
{
    return m_folder + QStringLiteral("/EMailFaxLog.tmp");
}

void Log::clearFunctErr()
{
    m_functErr.clear();
    Q_EMIT functErrChanged(m_functErr);
}

void Log::DumpStr(QString &strMsg, qint16 intList)
{
    try {
        strMsg.remove(u'\r');
        strMsg.remove(u'\n');
        // No single line may push the log past its limit or wipe its history when it is trimmed.
        if (strMsg.size() > kMaxLineChars) {
            const qsizetype cut = strMsg.size() - kMaxLineChars;
            strMsg.truncate(kMaxLineChars);
            strMsg += QStringLiteral(" ... (") + QString::number(cut) + QStringLiteral(" more characters cut)");
        }
        if (intList == EmailList)
            addToList(m_lists[0], strMsg);
        else if (intList == FaxList)
            addToList(m_lists[1], strMsg);
        addToList(m_lists[2], strMsg);

        // Reading the size of a missing log fails: the message then reaches the lists only.
        const QFileInfo info(logPath());
        if (!info.exists())
            raise(Err::FileNotFound);
        if (info.size() > kTrimAbove)
            trimLogFile();
        appendLine(strMsg);
    } catch (const RunError &e) {
        m_functErr = QStringLiteral("Logging Error in DumpStr() ") + QString::number(e.number()) +
                     QStringLiteral(": ") + e.description();
        Q_EMIT functErrChanged(m_functErr);
    } catch (const std::exception &e) {
        m_functErr = QStringLiteral("Logging Error in DumpStr() ") + QString::number(Err::InternalError) +
                     QStringLiteral(": ") + QString::fromUtf8(e.what());
        Q_EMIT functErrChanged(m_functErr);
    }
}

void Log::writeStartRecord(const QString &text)
{
    appendLine(text);
}

void Log::addToList(QStringListModel &list, const QString &message)
{
    const int row = list.rowCount();
    list.insertRows(row, 1);
    list.setData(list.index(row), message);
    if (list.rowCount() > kMaxListEntries)
        list.removeRows(0, 1);
    Q_EMIT appended(&list);
}

// Keeps only the lines copied after the work file last passed 300000 bytes: between none and 300000 bytes of the
// newest lines. The rule is old and keeps far less than it could at times; operators know the log by it.
void Log::trimLogFile()
{
    QFile log(logPath());
    QFile work(workPath());
    openOrRaise(log, QIODevice::ReadOnly);
    openOrRaise(work, QIODevice::WriteOnly | QIODevice::Truncate);
    qint64 workSize = 0;
    while (!log.atEnd()) {
        QByteArray line = log.readLine();
        while (line.endsWith('\n') || line.endsWith('\r'))
            line.chop(1);
        writeOrRaise(work, line + kLineEnd);
        workSize += line.size() + kLineEnd.size();
        if (workSize > kRestartWorkFileAbove) {
            work.close();
            work.remove();
            openOrRaise(work, QIODevice::WriteOnly | QIODevice::Truncate);
            workSize = 0;
        }
    }
    log.close();
    work.close();
    if (!QFile::remove(logPath()) || !QFile::copy(workPath(), logPath()))
        raise(Err::PathFileAccessError);
    QFile::remove(workPath());
}

void Log::appendLine(const QString &line)
{
    QFile log(logPath());
    openOrRaise(log, QIODevice::WriteOnly | QIODevice::Append);
    writeOrRaise(log, line.toUtf8() + kLineEnd);
}

void DumpStr(QString &strMsg, qint16 intList)
{
    if (Log *log = Log::instance()) {
        log->DumpStr(strMsg, intList);
    } else {
        strMsg.remove(u'\r');
        strMsg.remove(u'\n');
        std::fprintf(stderr, "%s\n", strMsg.toLocal8Bit().constData());
    }
}

void DumpStr(const QString &strMsg, qint16 intList)
{
    QString copy = strMsg;
    DumpStr(copy, intList);
}

} // namespace osprel
