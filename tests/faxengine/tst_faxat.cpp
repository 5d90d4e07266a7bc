// The command/response layer over a fake line, and the T.30 frame and parameter helpers the Class 1 driver uses.

#include "AtChannel.h"
#include "FakeLine.h"
#include "T30Frame.h"
#include "T30Params.h"

#include <QSignalSpy>
#include <QtTest>

using namespace osprel;
using osprel::faxlab::FakeLine;

namespace {
const QByteArray kEnd("\x10\x03", 2); // DLE ETX
}

Q_DECLARE_METATYPE(osprel::AtResponse)

class TestFaxAt : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void classify_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<AtResponse>("response");
        QTest::newRow("ok") << QByteArray("OK") << AtResponse::Ok;
        QTest::newRow("ok with blanks") << QByteArray(" OK ") << AtResponse::Ok;
        QTest::newRow("connect") << QByteArray("CONNECT") << AtResponse::Connect;
        QTest::newRow("connect rate") << QByteArray("CONNECT 14400") << AtResponse::Connect;
        QTest::newRow("connected is not connect") << QByteArray("CONNECTED") << AtResponse::Other;
        QTest::newRow("no carrier") << QByteArray("NO CARRIER") << AtResponse::NoCarrier;
        QTest::newRow("error") << QByteArray("ERROR") << AtResponse::Error;
        QTest::newRow("busy") << QByteArray("BUSY") << AtResponse::Busy;
        QTest::newRow("no dialtone") << QByteArray("NO DIALTONE") << AtResponse::NoDialTone;
        QTest::newRow("no dial tone") << QByteArray("NO DIAL TONE") << AtResponse::NoDialTone;
        QTest::newRow("no answer") << QByteArray("NO ANSWER") << AtResponse::NoAnswer;
        QTest::newRow("ring") << QByteArray("RING") << AtResponse::Ring;
        QTest::newRow("fcerror") << QByteArray("+FCERROR") << AtResponse::FcError;
        QTest::newRow("empty") << QByteArray("") << AtResponse::Empty;
        QTest::newRow("info") << QByteArray("0,1,1.0") << AtResponse::Other;
        QTest::newRow("hang-up") << QByteArray("+FHNG:0") << AtResponse::Other;
    }

    void classify()
    {
        QFETCH(QByteArray, line);
        QFETCH(AtResponse, response);
        QCOMPARE(classifyAtLine(line), response);
    }

    // The echo and empty lines are skipped, information lines kept, the final result ends the exchange, even when
    // the answer arrives in pieces.
    void commandWithInformationLines()
    {
        FakeLine line;
        AtChannel at(&line);
        QSignalSpy replies(&at, &AtChannel::reply);
        at.atCmd("AT+FTM=?", AtResponse::Ok, 1000);
        QCOMPARE(line.takeWritten(), QByteArray("AT+FTM=?\r"));
        line.feed("AT+FTM=?\r\r\n24,48,7");
        line.feed("2,96\r\n\r\nO");
        QCOMPARE(replies.count(), 0);
        line.feed("K\r\n");
        QCOMPARE(replies.count(), 1);
        const AtReply r = replies.at(0).at(0).value<AtReply>();
        QCOMPARE(r.result, AtResponse::Ok);
        QCOMPARE(r.lines, QList<QByteArray>{QByteArray("24,48,72,96")});
    }

    // A late result left over from before must not answer the next command.
    void staleInputIsNotAnAnswer()
    {
        FakeLine line;
        AtChannel at(&line);
        QSignalSpy replies(&at, &AtChannel::reply);
        line.feed("\r\nRING\r\n\r\nOK\r\n");
        at.atCmd("ATH0", AtResponse::Ok, 1000);
        QTRY_COMPARE(replies.count(), 0);
        line.feed("\r\nERROR\r\n");
        QCOMPARE(replies.count(), 1);
        QCOMPARE(replies.at(0).at(0).value<AtReply>().result, AtResponse::Error);
    }

    // T.31: CONNECT and the DLE-stuffed frame can arrive in one read; the frame is taken by the next exchange.
    void frameRightAfterConnect()
    {
        FakeLine line;
        AtChannel at(&line);
        QList<AtReply> replies;
        connect(&at, &AtChannel::reply, this, [&](const AtReply &r) {
            replies.append(r);
            if (r.is(AtResponse::Connect))
                at.receiveData(1000);
        });
        at.atCmd("AT+FRH=3", AtResponse::Connect, 1000);
        const QByteArray frame("\xff\x13\x80\x10\x00\x10\x12\x34", 8);
        line.feed("\r\nCONNECT\r\n" + AtChannel::dleStuff(frame) + "\x10\x03\r\nOK\r\n");
        QTRY_COMPARE(replies.size(), 2);
        QCOMPARE(replies.at(1).result, AtResponse::Ok);
        QVERIFY(replies.at(1).dataComplete);
        QCOMPARE(replies.at(1).data, frame);
        QCOMPARE(T30Frame::fromReceived(frame).fcf(), Fcf::DIS);
    }

    void dataReceptionEnds_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<AtResponse>("result");
        QTest::addColumn<QByteArray>("data");
        QTest::newRow("good frame") << QByteArray::fromHex("ff13841010") + kEnd + "\r\nOK\r\n"
                                    << AtResponse::Ok << QByteArray::fromHex("ff138410");
        QTest::newRow("bad check sequence") << QByteArray::fromHex("ff1384") + kEnd + "\r\nERROR\r\n"
                                            << AtResponse::Error << QByteArray::fromHex("ff1384");
        QTest::newRow("DLE SUB") << QByteArray::fromHex("ff101a") + kEnd + "\r\nOK\r\n"
                                 << AtResponse::Ok << QByteArray::fromHex("ff1010");
        QTest::newRow("no carrier") << QByteArray("\r\nNO CARRIER\r\n") << AtResponse::NoCarrier << QByteArray();
    }

    void dataReceptionEnds()
    {
        QFETCH(QByteArray, input);
        QFETCH(AtResponse, result);
        QFETCH(QByteArray, data);
        FakeLine line;
        AtChannel at(&line);
        QSignalSpy replies(&at, &AtChannel::reply);
        at.receiveData(1000);
        for (char c : input) // byte by byte: every split point
            line.feed(QByteArray(1, c));
        QTRY_COMPARE(replies.count(), 1);
        const AtReply r = replies.at(0).at(0).value<AtReply>();
        QCOMPARE(r.result, result);
        QCOMPARE(r.data, data);
    }

    void sendDataDoublesDle()
    {
        FakeLine line;
        AtChannel at(&line);
        QSignalSpy replies(&at, &AtChannel::reply);
        at.sendData(QByteArray("\x10\x01\x10", 3), QByteArray("\x10\x03", 2), AtResponse::Connect, 1000);
        QCOMPARE(line.takeWritten(), QByteArray("\x10\x10\x01\x10\x10\x10\x03", 7));
        line.feed("\r\nCONNECT\r\n");
        QCOMPARE(replies.count(), 1);
        QCOMPARE(replies.at(0).at(0).value<AtReply>().result, AtResponse::Connect);
    }

    // A reception that times out is cancelled with CAN, and the modem's answer to that is swallowed.
    void timeoutCancelsTheReception()
    {
        FakeLine line;
        AtChannel at(&line);
        QSignalSpy replies(&at, &AtChannel::reply);
        at.atCmd("AT+FRH=3", AtResponse::Connect, 20, true);
        QCOMPARE(line.written(), QByteArray("AT+FRH=3\r"));
        QTRY_COMPARE(line.written(), QByteArray("AT+FRH=3\r\x18"));
        QCOMPARE(replies.count(), 0);
        line.feed("\r\nOK\r\n");
        QCOMPARE(replies.count(), 1);
        QCOMPARE(replies.at(0).at(0).value<AtReply>().result, AtResponse::Timeout);

        // Without abortOnTimeout the timeout is the answer.
        at.atCmd("AT", AtResponse::Ok, 20);
        QTRY_COMPARE(replies.count(), 2);
        QCOMPARE(replies.at(1).at(0).value<AtReply>().result, AtResponse::Timeout);
    }

    void xonOrTimeout()
    {
        FakeLine line;
        AtChannel at(&line);
        QSignalSpy replies(&at, &AtChannel::reply);
        at.waitForXon(1000);
        line.feed(QByteArray(1, AtChannel::kXon));
        QCOMPARE(replies.count(), 1);
        QCOMPARE(replies.at(0).at(0).value<AtReply>().result, AtResponse::Xon);
        at.waitForXon(20);
        QTRY_COMPARE(replies.count(), 2);
        QCOMPARE(replies.at(1).at(0).value<AtReply>().result, AtResponse::Timeout);
    }

    void identIsSentLastCharacterFirst()
    {
        const QByteArray info = T30Frame::encodeIdent(QStringLiteral("+1 555 0100"));
        QCOMPARE(info.size(), 20);
        QCOMPARE(info, QByteArray("         0010 555 1+"));
        QCOMPARE(T30Frame::decodeIdent(info), QStringLiteral("+1 555 0100"));
        QCOMPARE(T30Frame::encodeIdent(QStringLiteral("123456789012345678901234")).size(), 20);
        const T30Frame tsi = T30Frame::command(Fcf::TSI, info, false);
        QCOMPARE(tsi.encoded().left(3), QByteArray("\xff\x03\x43"));
        QCOMPARE(T30Frame::command(Fcf::EOP).encoded(), QByteArray("\xff\x13\x2f"));
    }

    // A DIS as spandsp sends it: V.27 ter, V.29, V.17, fine, 0 ms scan time.
    void disAndDcs()
    {
        const RemoteCapabilities c = RemoteCapabilities::fromDis(QByteArray::fromHex("00eef880809180808018"));
        QVERIFY(c.valid && c.canReceive && c.v27 && c.v29 && c.v17 && c.fine);
        QCOMPARE(c.minScanMsFor(true), 0);
        const QList<int> modem = T30Params::parseCarrierList("24,48,72,73,74,96,97,98,121,122,145,146");
        const FaxModulation *m = T30Params::choose(modem, c);
        QVERIFY(m);
        QCOMPARE(m->bitRate, 14400);
        QCOMPARE(m->pageCode, 146); // V.17 short training after TCF
        QCOMPARE(T30Params::dcs(*m, true, 0), QByteArray::fromHex("006270"));
        // Falling back after FTT: 12000, 9600, 7200, 4800, 2400, then nothing.
        QList<int> rates;
        for (int max = 14399; (m = T30Params::choose(modem, c, max)); max = m->bitRate - 1)
            rates << m->bitRate;
        QCOMPARE(rates, (QList<int>{12000, 9600, 7200, 4800, 2400}));
    }

    void scanTimeAndRates_data()
    {
        QTest::addColumn<QByteArray>("dis");
        QTest::addColumn<int>("normalMs");
        QTest::addColumn<int>("fineMs");
        QTest::addColumn<int>("bestRate");
        // Octet 2 bits 11-14: 0x0c V.27 ter + V.29; octet 3 bits 21-23 the scan time.
        QTest::newRow("V.29, 20 ms") << QByteArray::fromHex("000c00") << 20 << 20 << 9600;
        QTest::newRow("V.27 ter, 40 ms") << QByteArray::fromHex("000840") << 40 << 40 << 4800;
        QTest::newRow("10 ms, half at fine") << QByteArray::fromHex("000c60") << 10 << 5 << 9600;
        QTest::newRow("fall-back only, 5 ms") << QByteArray::fromHex("000010") << 5 << 5 << 2400;
    }

    void scanTimeAndRates()
    {
        QFETCH(QByteArray, dis);
        QFETCH(int, normalMs);
        QFETCH(int, fineMs);
        QFETCH(int, bestRate);
        const RemoteCapabilities c = RemoteCapabilities::fromDis(dis);
        QCOMPARE(c.minScanMsFor(false), normalMs);
        QCOMPARE(c.minScanMsFor(true), fineMs);
        const FaxModulation *m = T30Params::choose({24, 48, 72, 96, 145, 146}, c);
        QVERIFY(m);
        QCOMPARE(m->bitRate, bestRate);
        QCOMPARE(T30Params::minBytesPerLine(9600, 20), 24);
        QCOMPARE(T30Params::parseCarrierList("(24,48),96-97"), (QList<int>{24, 48, 96, 97}));
    }
};

QTEST_MAIN(TestFaxAt)
#include "tst_faxat.moc"
