// The test modem itself, cross-checked with an independent Class 1 sender: Debian's efax sends two pages made by
// efix through the software modem, and they arrive as the engine's faxes do.

#include "SoftModem.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>
#include <tiffio.h>

using osprel::faxlab::SoftModem;

class TestFaxEfax : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void efaxSendsThroughTheSoftModem()
    {
        const QString efix = QStandardPaths::findExecutable(QStringLiteral("efix"));
        const QString efax = QStandardPaths::findExecutable(QStringLiteral("efax"));
        QVERIFY2(!efix.isEmpty() && !efax.isEmpty(), "efax and efix are needed: apt-get install efax");
        QTemporaryDir dir;
        QVERIFY(dir.isValid());

        QFile note(dir.filePath(QStringLiteral("note.txt")));
        QVERIFY(note.open(QIODevice::WriteOnly));
        for (int i = 1; i <= 90; ++i) // efix starts a new page every 66 lines
            note.write("Line " + QByteArray::number(i) + " of the cross-check note\n");
        note.close();
        QProcess pages;
        pages.setWorkingDirectory(dir.path());
        pages.start(efix, {QStringLiteral("-n"), QStringLiteral("page.%03d"), note.fileName()});
        QVERIFY(pages.waitForFinished(30000));
        QCOMPARE(pages.exitCode(), 0);

        const QString received = dir.filePath(QStringLiteral("received.tif"));
        // efax is another process: a scheduling stall of a few hundred milliseconds must not become a T.30 time-out
        // on the simulated line, so the line runs at most four times real time while efax is waited for.
        SoftModem::Options options{dir.filePath(QStringLiteral("modem")), received};
        options.speedUp = 4;
        SoftModem modem(options);
        QString error;
        QVERIFY2(modem.start(&error), qPrintable(error));
        QProcess sender;
        sender.setWorkingDirectory(dir.path());
        sender.setProcessChannelMode(QProcess::MergedChannels);
        sender.start(efax, {QStringLiteral("-d"), modem.linkPath(), QStringLiteral("-l"), QStringLiteral("+1 555 0199"),
                            QStringLiteral("-t"), QStringLiteral("5551234"), QStringLiteral("page.001"),
                            QStringLiteral("page.002")});
        QVERIFY(sender.waitForFinished(90000));
        const QByteArray output = sender.readAll();
        QVERIFY2(sender.exitStatus() == QProcess::NormalExit && sender.exitCode() == 0, output.constData());

        QTRY_VERIFY_WITH_TIMEOUT(modem.result().finished, 10000);
        const SoftModem::Result r = modem.result();
        modem.stop();
        QCOMPARE(r.dialled, QStringLiteral("5551234"));
        QVERIFY2(r.completionCode == 0, qPrintable(r.completionText));
        QCOMPARE(r.pages, 2);
        QCOMPARE(r.badRows, 0);
        QCOMPARE(r.remoteId, QStringLiteral("+1 555 0199"));
        TIFF *t = TIFFOpen(QFile::encodeName(received).constData(), "r");
        QVERIFY(t);
        QCOMPARE(int(TIFFNumberOfDirectories(t)), 2);
        TIFFClose(t);
    }
};

QTEST_GUILESS_MAIN(TestFaxEfax)
#include "tst_faxefax.moc"
