// DumpStr: the status lists, the log file and its trimming rule, and failures of the log itself.

#include "ErrorReport.h"
#include "Log.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace osprel;

namespace {
QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeLines(const QString &path, int lineBytes, qint64 total)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    const QByteArray line = QByteArray(lineBytes - 2, 'x') + "\r\n";
    int n = 0;
    while (file.size() + line.size() <= total) {
        QByteArray numbered = line;
        const QByteArray tag = QByteArray::number(n++);
        numbered.replace(0, tag.size(), tag);
        file.write(numbered);
    }
    if (file.size() < total) // pad to the exact size
        file.write(QByteArray(total - file.size(), 'y'));
}
} // namespace

class TestLog : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_log = std::make_unique<Log>(m_dir->path());
        m_log->writeStartRecord(QStringLiteral("start"));
    }
    void cleanup()
    {
        m_log.reset();
        m_dir.reset();
    }

    void listsKeepTheNewest280AndLineBreaksGo()
    {
        for (int i = 1; i <= 281; ++i)
            DumpStr(QStringLiteral("mail %1").arg(i), Log::EmailList);
        DumpStr(QStringLiteral("fax"), Log::FaxList);
        QCOMPARE(m_log->lstEmailStatus()->rowCount(), 280);
        QCOMPARE(m_log->lstEmailStatus()->stringList().first(), QStringLiteral("mail 2"));
        QCOMPARE(m_log->lstEmailStatus()->stringList().last(), QStringLiteral("mail 281"));
        QCOMPARE(m_log->lstFaxStatus()->stringList(), QStringList{QStringLiteral("fax")});
        QCOMPARE(m_log->lstStatus()->stringList().last(), QStringLiteral("fax"));

        QString message = QStringLiteral("two\r\nlines\n");
        DumpStr(message, 7);
        QCOMPARE(message, QStringLiteral("twolines")); // the caller's text loses its breaks too
        QVERIFY(readAll(m_log->logPath()).endsWith("fax\r\ntwolines\r\n"));
    }

    void trimsOnlyAbove512000Bytes()
    {
        writeLines(m_log->logPath(), 100, 512000);
        DumpStr(QStringLiteral("kept whole"));
        QCOMPARE(QFileInfo(m_log->logPath()).size(), 512000 + 12);

        writeLines(m_log->logPath(), 100, 512001);
        DumpStr(QStringLiteral("after trim"));
        const qint64 size = QFileInfo(m_log->logPath()).size();
        QVERIFY2(size < 300000, QByteArray::number(size));
        QVERIFY(!QFile::exists(m_log->workPath()));
    }

    void trimKeepsOnlyTheLinesAfterTheLastRestart()
    {
        // 7000 lines of 100 bytes: the work file restarts after every 3001 lines, so the last 998 lines are kept.
        writeLines(m_log->logPath(), 100, 700000);
        DumpStr(QStringLiteral("newest"));
        const QList<QByteArray> lines = readAll(m_log->logPath()).split('\n');
        QCOMPARE(lines.size() - 1, 998 + 1);
        QVERIFY(lines.first().startsWith("6002"));
        QCOMPARE(lines.at(lines.size() - 2), QByteArray("newest\r"));
    }

    void aMissingLogReachesTheListsAndShowsTheFailure()
    {
        QFile::remove(m_log->logPath());
        DumpStr(QStringLiteral("lost to the file"));
        QCOMPARE(m_log->lstStatus()->stringList().last(), QStringLiteral("lost to the file"));
        QCOMPARE(m_log->functErr(), QStringLiteral("Logging Error in DumpStr() 53: File not found"));
        QVERIFY(!QFile::exists(m_log->logPath()));

        // A log put back (by an operator or a restore) takes the next line; the removed one is not written to.
        writeLines(m_log->logPath(), 100, 1000);
        DumpStr(QStringLiteral("back in the file"));
        QVERIFY(readAll(m_log->logPath()).endsWith("back in the file\r\n"));
        QCOMPARE(QFileInfo(m_log->logPath()).size(), 1000 + 18);
    }

    void errorReportsHaveTheFixedForm()
    {
        reportError(9, QStringLiteral("Subscript out of range"), QStringLiteral("ServerCmd"),
                    QStringLiteral(", Form = Vantor32"));
        QCOMPARE(m_log->lstStatus()->stringList().last(),
                 QStringLiteral("ErrorHandler 9: Subscript out of range (ServerCmd), Form = Vantor32"));
        const bool completed = guarded(QStringLiteral("Form_Load"), [] { throw std::runtime_error("boom"); });
        QVERIFY(!completed);
        QCOMPARE(m_log->lstStatus()->stringList().last(), QStringLiteral("ErrorHandler 51: boom (Form_Load)"));
    }

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Log> m_log;
};

QTEST_GUILESS_MAIN(TestLog)
#include "tst_log.moc"
