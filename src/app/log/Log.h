#pragma once
// The server's one diagnostic channel: DumpStr shows a message in the status lists and appends it to
// EMailFaxLog.txt in the data folder, trimming the file when it grows past 512000 bytes.

#include <QObject>
#include <QStringListModel>

namespace osprel {

class Log : public QObject
{
    Q_OBJECT
public:
    enum List : qint16 { EmailList = 0, FaxList = 1, NoList = 2 };
    static constexpr int kMaxListEntries = 280;
    static constexpr qint64 kTrimAbove = 512000;
    static constexpr int kMaxLineChars = 4096; // a longer message is cut to this many characters
    static constexpr qint64 kRestartWorkFileAbove = 300000;

    explicit Log(const QString &folder, QObject *parent = nullptr);
    ~Log() override;

    // The log in use (the last one made), or null.
    static Log *instance();

    QString logPath() const;
    QString workPath() const;

    QStringListModel *lstStatus() { return &m_lists[2]; }
    QStringListModel *lstEmailStatus() { return &m_lists[0]; }
    QStringListModel *lstFaxStatus() { return &m_lists[1]; }

    // The text of lblDumpStrFunctErr: a failure of DumpStr itself.
    const QString &functErr() const { return m_functErr; }
    void clearFunctErr();

    void DumpStr(QString &strMsg, qint16 intList);

    // The start-up record, appended directly to the log file (it creates the file).
    void writeStartRecord(const QString &text);

Q_SIGNALS:
    // A message was added to a status list; the window selects its newest entry.
    void appended(QStringListModel *list);
    void functErrChanged(const QString &text);

private:
    void addToList(QStringListModel &list, const QString &message);
    void trimLogFile();
    void appendLine(const QString &line);

    QString m_folder;
    QStringListModel m_lists[3];
    QString m_functErr;
};

// DumpStr through the log in use; without one the message goes to stderr.
void DumpStr(QString &strMsg, qint16 intList = Log::NoList);
void DumpStr(const QString &strMsg, qint16 intList = Log::NoList);

} // namespace osprel
