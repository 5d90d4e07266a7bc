// The Class 1 driver end to end: faxes sent by the engine through the software modem (spandsp T.31) to a T.30
// terminal that stores them; call failures; stopping a call.

#include "AtChannel.h"
#include "Clock.h"
#include "EventLog.h"
#include "FakeLine.h"
#include "FaxCodes.h"
#include "FaxDocument.h"
#include "FaxEngine.h"
#include "FaxHeader.h"
#include "GlyphCache.h"
#include "SoftModem.h"
#include "T30Frame.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>
#include <spandsp.h>
#include <tiffio.h>

using namespace osprel;
using osprel::faxlab::EventLog;
using osprel::faxlab::SoftModem;

namespace {
// A called station that loses the first page: after EOP it is back in phase B (CSI, DIS), as a receiver is whose
// page carrier went under on a poor line. Every later page it confirms. A Class 1 modem without V.17 in between.
class PageLosingLine : public osprel::faxlab::FakeLine
{
public:
    // What the station saw; kept by the test, since the engine deletes its line after the call.
    struct Seen
    {
        QStringList commands;
        int pages = 0;
    };
    PageLosingLine(Seen &seen, QObject *parent) : FakeLine(parent), m_seen(seen) {}

    void write(const QByteArray &d) override
    {
        FakeLine::write(d);
        if (m_dataNext) {
            m_dataNext = false;
            if (m_lastCmd.startsWith("AT+FTH")) {
                const quint8 fcf = quint8(d.at(2)) & ~Fcf::XBit;
                m_lastFrame = fcf;
                if (fcf == Fcf::EOP || fcf == Fcf::MPS)
                    m_toReceive = m_seen.pages == 1 ? QList<QByteArray>{frame(Fcf::CSI, false), frame(Fcf::DIS, true)}
                                                    : QList<QByteArray>{frame(Fcf::MCF, true)};
                reply(uchar(d.at(1)) == T30Frame::kControlFinal ? "\r\nOK\r\n" : "\r\nCONNECT\r\n");
            } else {
                if (m_lastFrame == Fcf::DCS)
                    m_toReceive = {frame(Fcf::CFR, true)};
                else
                    ++m_seen.pages;
                m_lastFrame = 0;
                reply("\r\nOK\r\n");
            }
            return;
        }
        m_lastCmd = d.trimmed();
        m_seen.commands << QString::fromLatin1(m_lastCmd);
        if (m_lastCmd == "AT+FCLASS?")
            reply("\r\n1\r\n\r\nOK\r\n");
        else if (m_lastCmd == "AT+FTM=?")
            reply("\r\n24,48,72,96\r\n\r\nOK\r\n");
        else if (m_lastCmd.startsWith("ATD")) {
            m_toReceive = {frame(Fcf::DIS, true)};
            reply("\r\nCONNECT\r\n" + received(frame(Fcf::CSI, false)));
        } else if (m_lastCmd == "AT+FRH=3")
            reply(m_toReceive.isEmpty() ? "\r\nNO CARRIER\r\n" : "\r\nCONNECT\r\n" + received(m_toReceive.takeFirst()));
        else if (m_lastCmd.startsWith("AT+FTH") || m_lastCmd.startsWith("AT+FTM=")) {
            m_dataNext = true;
            reply("\r\nCONNECT\r\n");
        } else
            reply("\r\nOK\r\n");
    }

private:
    static QByteArray frame(quint8 fcf, bool final)
    {
        // V.27 ter and V.29, fine resolution, 20 ms scan lines.
        const QByteArray info = fcf == Fcf::DIS   ? QByteArray::fromHex("00ce00")
                                : fcf == Fcf::CSI ? T30Frame::encodeIdent(QStringLiteral("LOSSY"))
                                                  : QByteArray();
        QByteArray f = T30Frame::command(fcf, info, final).encoded();
        f[2] = char(quint8(f.at(2)) & ~Fcf::XBit); // the called station's frames
        return f + QByteArray(2, '\0');            // the FCS octets T.31 passes on
    }
    static QByteArray received(const QByteArray &f) { return AtChannel::dleStuff(f) + "\x10\x03\r\nOK\r\n"; }
    void reply(const QByteArray &text)
    {
        QTimer::singleShot(1, this, [this, text] { feed(text); });
    }

    Seen &m_seen;
    bool m_dataNext = false;
    QByteArray m_lastCmd;
    quint8 m_lastFrame = 0;
    QList<QByteArray> m_toReceive;
};

int tiffPages(const QString &path)
{
    TIFF *t = TIFFOpen(QFile::encodeName(path).constData(), "r");
    if (!t)
        return -1;
    const int n = TIFFNumberOfDirectories(t);
    TIFFClose(t);
    return n;
}

QString notePage(int lines)
{
    QString text = QStringLiteral("To: Pat Example\r\nFax Number: 5550199\r\n\r\n");
    for (int i = 4; i <= lines; ++i)
        text += QStringLiteral("\tLine %1: Chamber 7 temperature alarm, CH1 actual 85.2 C\r\n").arg(i);
    return text;
}
} // namespace

class TestFaxClass1 : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void sendsPagesToTheSoftModem_data()
    {
        QTest::addColumn<int>("lines");
        QTest::addColumn<int>("pages");
        QTest::newRow("one page") << 30 << 1;
        QTest::newRow("two pages") << 90 << 2;
    }

    void sendsPagesToTheSoftModem()
    {
        QFETCH(int, lines);
        QFETCH(int, pages);
        const QString tag = QString::fromLatin1(QTest::currentDataTag()).replace(QLatin1Char(' '), QLatin1Char('-'));
        const QString text = m_dir.filePath(tag + QStringLiteral(".txt"));
        const QString image = m_dir.filePath(tag + QStringLiteral(".fmf"));
        const QString received = m_dir.filePath(tag + QStringLiteral("-received.tif"));
        QFile f(text);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(notePage(lines).toLatin1());
        f.close();
        QString error;
        QVERIFY2(FaxEngine::convertText(text, image, &error), qPrintable(error));

        SoftModem modem({m_dir.filePath(tag + QStringLiteral("-modem")), received});
        QVERIFY2(modem.start(&error), qPrintable(error));
        FaxEngine engine;
        EventLog log(&engine);
        engine.setPort(modem.linkPath());
        engine.setFaxClass(FaxEngine::Class1);
        const QString station = QStringLiteral("+1 555 0100 Osprel Lab");
        const QDateTime sent(QDate(2026, 11, 23), QTime(10, 15));
        Clock::setSource([sent] { return sent; });
        engine.setStationId(station);
        engine.setNumber(QStringLiteral("15550199"));
        engine.setFileToSend(image);
        QCOMPARE(engine.state(), int(FaxEngine::Idle));
        QElapsedTimer wall;
        wall.start();
        QVERIFY(engine.send());
        QCOMPARE(engine.state(), int(FaxEngine::InCall));
        QVERIFY(!engine.send()); // one fax at a time
        QTRY_VERIFY_WITH_TIMEOUT(log.completed(), 90000);
        const qint64 ms = wall.elapsed();
        QVERIFY2(log.completion().errorCode == 0,
                 qPrintable(log.completion().errorText + QLatin1Char('\n') + log.dialogue()));
        QCOMPARE(engine.state(), int(FaxEngine::Idle)); // free again once the outcome is out
        QVERIFY(log.stateHeldDuringCall());
        QCOMPARE(log.completion().pageCount, pages);
        QCOMPARE(log.completion().remoteId, QStringLiteral("SOFTMODEM"));
        QCOMPARE(log.completion().speed, QStringLiteral("14400"));
        QCOMPARE(log.completion().resolution, QStringLiteral("Fine"));
        QVERIFY(log.kinds().contains(FaxEvent::StartTimeKind));
        QVERIFY(log.kinds().contains(FaxEvent::NegotiatedKind));
        QCOMPARE(log.kinds().count(FaxEvent::PagesKind), pages);
        QCOMPARE(log.kinds().last(), int(FaxEvent::CompletionKind));

        QTRY_VERIFY_WITH_TIMEOUT(modem.result().finished, 10000);
        const SoftModem::Result r = modem.result();
        QCOMPARE(r.dialled, QStringLiteral("15550199"));
        QVERIFY2(r.completionCode == 0, qPrintable(r.completionText));
        QCOMPARE(r.pages, pages);
        QCOMPARE(r.badRows, 0);
        QCOMPARE(r.width, 1728);
        QCOMPARE(r.remoteId, QStringLiteral("+1 555 0100"));
        modem.stop();
        Clock::setSource({});
        QCOMPARE(tiffPages(received), pages);
        // Each received page begins with its header line, pel for pel as drawn for it.
        FaxDocument got;
        QVERIFY2(got.open(received, &error), qPrintable(error));
        GlyphCache glyphs(FaxHeader::kFontPixels);
        for (int p = 0; p < pages; ++p) {
            FaxPageImage band;
            band.rows = FaxHeader::kBandRows;
            band.bits = QByteArray(band.rows * FaxPageImage::kRowBytes, '\0');
            FaxHeader::stamp(band, FaxHeader::text(station, sent, p + 1, pages), glyphs);
            QVERIFY(band.bits.count('\0') < band.bits.size());
            QVERIFY2(got.page(p).bits.left(band.bits.size()) == band.bits, qPrintable(QString::number(p + 1)));
        }
        // OSPREL_FAX_KEEP=dir keeps what was sent and received, to look at.
        if (qEnvironmentVariableIsSet("OSPREL_FAX_KEEP")) {
            const QDir keep(qEnvironmentVariable("OSPREL_FAX_KEEP"));
            QFile::copy(image, keep.filePath(tag + QStringLiteral("-sent.tif")));
            QFile::copy(received, keep.filePath(tag + QStringLiteral("-received.tif")));
        }
        qInfo("%d page(s): %.1f s wall, %.1f s on the line, %d bit/s", pages, ms / 1000.0, r.virtualSeconds, r.bitRate);
    }

    // Receivers that ask more than the ideal one, and a line whose noise spoils the first training: the page still
    // arrives whole, at the speed and resolution negotiated, and the log reports what the receiver saw.
    void demandingReceivers_data()
    {
        QTest::addColumn<int>("modems");
        QTest::addColumn<int>("resolutions");
        QTest::addColumn<int>("scanLineMs");
        QTest::addColumn<int>("compressions");
        QTest::addColumn<int>("noisyTrainings");
        QTest::addColumn<QString>("resolution");
        QTest::newRow("V.29 only") << int(T30_SUPPORT_V27TER | T30_SUPPORT_V29) << 0 << 0 << 0 << 0 << "Fine";
        QTest::newRow("normal resolution only") << 0 << int(T30_SUPPORT_STANDARD_RESOLUTION) << 0 << 0 << 0 << "Normal";
        QTest::newRow("20 ms scan line") << 0 << 0 << 20 << 0 << 0 << "Fine";
        QTest::newRow("1-D coding only") << 0 << 0 << 0 << int(T30_SUPPORT_T4_1D_COMPRESSION) << 0 << "Fine";
        QTest::newRow("noisy line") << 0 << 0 << 0 << 0 << 1 << "Fine";
    }

    void demandingReceivers()
    {
        QFETCH(int, modems);
        QFETCH(int, resolutions);
        QFETCH(int, scanLineMs);
        QFETCH(int, compressions);
        QFETCH(int, noisyTrainings);
        QFETCH(QString, resolution);
        const QString tag = QString::fromLatin1(QTest::currentDataTag()).replace(QLatin1Char(' '), QLatin1Char('-'));
        SoftModem::Options opt{m_dir.filePath(tag + QStringLiteral("-modem")),
                               m_dir.filePath(tag + QStringLiteral("-received.tif"))};
        opt.receiverModems = modems;
        opt.receiverResolutions = resolutions;
        opt.minScanLineMs = scanLineMs;
        opt.receiverCompressions = compressions;
        opt.noisyTrainings = noisyTrainings;
        opt.noiseDbm0 = -20; // 6 dB below the signal: no training survives it
        SoftModem modem(opt);
        QString error;
        QVERIFY2(modem.start(&error), qPrintable(error));
        FaxEngine engine;
        EventLog log(&engine);
        QVERIFY(dialOnePage(engine, modem.linkPath()));
        QTRY_VERIFY_WITH_TIMEOUT(log.completed(), 90000);
        QVERIFY2(log.completion().errorCode == 0, qPrintable(log.completion().errorText + u'\n' + log.dialogue()));
        QTRY_VERIFY_WITH_TIMEOUT(modem.result().finished, 10000);
        const SoftModem::Result r = modem.result();
        QVERIFY2(r.completionCode == 0, qPrintable(r.completionText));
        QCOMPARE(r.pages, 1);
        QCOMPARE(r.badRows, 0);
        QCOMPARE(log.completion().speed, QString::number(r.bitRate));
        QCOMPARE(log.completion().resolution, resolution);
        QCOMPARE(r.yResolution, resolution == QLatin1String("Fine") ? 7700 : 3850);
        if (modems)
            QCOMPARE(r.bitRate, 9600);
        bool fellBack = false; // the engine's notice, as the server's log shows it
        for (const FaxEvent &e : log.events())
            fellBack = fellBack || e.statusText.startsWith(QLatin1String("Training failed at 14400 bit/s, trying"));
        QCOMPARE(fellBack, noisyTrainings > 0);
        if (noisyTrainings)
            QCOMPARE(r.bitRate, 12000);
        // 2-D coding goes out only to a receiver that offers it (the DIS as the engine read it).
        const bool twoD =
            log.dialogue().contains(QLatin1String("--- DIS: ")) && !log.dialogue().contains(QLatin1String("2-D=0"));
        QCOMPARE(twoD, compressions == 0);
        qInfo("%d bit/s, %.1f s on the line", r.bitRate, r.virtualSeconds);
    }

    // DIS after the page: the called station lost it. The page is trained for again one rate lower and sent again,
    // and the fax succeeds with the rate it went through at.
    void pageLostIsSentAgainLower()
    {
        FaxEngine engine;
        EventLog log(&engine);
        PageLosingLine::Seen seen;
        engine.setLineFactory([&seen](QObject *parent) { return new PageLosingLine(seen, parent); });
        engine.setNumber(QStringLiteral("15550199"));
        engine.setFileToSend(onePageImage());
        QVERIFY(engine.send());
        QTRY_VERIFY_WITH_TIMEOUT(log.completed(), 20000);
        QVERIFY2(log.completion().errorCode == 0, qPrintable(log.completion().errorText + u'\n' + log.dialogue()));
        QCOMPARE(seen.pages, 2);
        QCOMPARE(log.completion().speed, QStringLiteral("7200"));
        const QStringList ftm = seen.commands.filter(QRegularExpression(QStringLiteral("^AT\\+FTM=\\d")));
        QCOMPARE(ftm, (QStringList{"AT+FTM=96", "AT+FTM=96", "AT+FTM=72", "AT+FTM=72"})); // TCF, page; again
        bool noticed = false;
        for (const FaxEvent &e : log.events())
            noticed = noticed || e.statusText.startsWith(QLatin1String("Page 1 not received"));
        QVERIFY(noticed);
    }

    // The far end of the line decides: the modem's result code becomes the fax's error.
    void callFailures_data()
    {
        QTest::addColumn<int>("line");
        QTest::addColumn<int>("error");
        QTest::newRow("busy") << int(SoftModem::Line::Busy) << FaxError::Busy;
        QTest::newRow("no answer") << int(SoftModem::Line::NoAnswer) << FaxError::NoAnswer;
        QTest::newRow("no dial tone") << int(SoftModem::Line::NoDialTone) << FaxError::NoDialTone;
    }

    void callFailures()
    {
        QFETCH(int, line);
        QFETCH(int, error);
        SoftModem::Options opt{m_dir.filePath(QStringLiteral("fail-modem")), m_dir.filePath(QStringLiteral("x.tif"))};
        opt.line = SoftModem::Line(line);
        SoftModem modem(opt);
        QString why;
        QVERIFY2(modem.start(&why), qPrintable(why));
        FaxEngine engine;
        EventLog log(&engine);
        QVERIFY(dialOnePage(engine, modem.linkPath()));
        QTRY_VERIFY_WITH_TIMEOUT(log.completed(), 20000);
        QCOMPARE(log.completion().errorCode, error);
        QCOMPARE(log.completion().errorText, FaxEngine::errorText(error));
        QCOMPARE(log.completion().completionCode, error);
        QCOMPARE(log.completion().completionText, QStringLiteral("Fax failed"));
        QVERIFY(log.stateHeldDuringCall());
        QCOMPARE(engine.state(), int(FaxEngine::Idle)); // free again once the outcome is out
        QCOMPARE(modem.result().calls, 1);
        QVERIFY(!modem.result().finished);
    }

    // Failures before any modem is reached still end in one completion, never in silence.
    void failuresBeforeTheCall()
    {
        FaxEngine engine;
        EventLog log(&engine);
        engine.setPort(m_dir.filePath(QStringLiteral("no-such-port")));
        engine.setFileToSend(onePageImage());
        QVERIFY(engine.send());
        QCOMPARE(engine.state(), int(FaxEngine::InCall));
        QTRY_VERIFY(log.completed());
        QCOMPARE(log.completion().errorCode, FaxError::DeviceError);
        QCOMPARE(engine.state(), int(FaxEngine::Idle)); // free again once the outcome is out

        EventLog log2(&engine);
        engine.setFileToSend(m_dir.filePath(QStringLiteral("missing.fmf")));
        QVERIFY(engine.send());
        QTRY_VERIFY(log2.completed());
        QCOMPARE(log2.completion().errorCode, FaxError::FileError);
        QCOMPARE(log2.completions(), 1);
    }

    // stop() in the middle of a page: the modem is told to hang up, the engine is free at once, and the next fax
    // through the same modem goes out.
    void stopAbandonsTheCall()
    {
        SoftModem modem({m_dir.filePath(QStringLiteral("stop-modem")), m_dir.filePath(QStringLiteral("stop.tif"))});
        QString why;
        QVERIFY2(modem.start(&why), qPrintable(why));
        FaxEngine engine;
        EventLog log(&engine);
        QVERIFY(dialOnePage(engine, modem.linkPath()));
        QTRY_VERIFY_WITH_TIMEOUT(log.kinds().contains(FaxEvent::PagesKind), 30000);
        engine.stop();
        QCOMPARE(engine.state(), int(FaxEngine::Idle));
        QCOMPARE(log.completions(), 1);
        QCOMPARE(log.completion().errorCode, FaxError::CallAborted);

        EventLog again(&engine);
        QVERIFY(engine.send());
        QTRY_VERIFY_WITH_TIMEOUT(again.completed(), 60000);
        QVERIFY2(again.completion().errorCode == 0,
                 qPrintable(again.completion().errorText + QLatin1Char('\n') + again.dialogue()));
        QCOMPARE(modem.result().calls, 2);
    }

private:
    // Points the engine at the modem behind port with the one-page image and dials.
    bool dialOnePage(FaxEngine &engine, const QString &port)
    {
        engine.setPort(port);
        engine.setNumber(QStringLiteral("15550199"));
        engine.setFileToSend(onePageImage());
        return engine.send();
    }

    QString onePageImage()
    {
        const QString image = m_dir.filePath(QStringLiteral("one.fmf"));
        if (!QFile::exists(image)) {
            const QString text = m_dir.filePath(QStringLiteral("one.txt"));
            QFile f(text);
            if (f.open(QIODevice::WriteOnly))
                f.write(notePage(20).toLatin1());
            f.close();
            FaxEngine::convertText(text, image, nullptr);
        }
        return image;
    }

    QTemporaryDir m_dir;
};

QTEST_MAIN(TestFaxClass1)
#include "tst_faxclass1.moc"
