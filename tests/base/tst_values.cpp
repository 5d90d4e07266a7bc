// The value rules every subsystem relies on: numeric prefix, 16-bit overflow, splitting and the list accessors.

#include "ListStore.h"
#include "RunError.h"
#include "Values.h"

#include <QtTest>

using namespace osprel;

class TestValues : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void val_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::newRow("empty") << "" << 0.0;
        QTest::newRow("text") << "abc" << 0.0;
        QTest::newRow("leading blanks") << "  12abc" << 12.0;
        QTest::newRow("blanks inside") << "1 2 3" << 123.0;
        QTest::newRow("negative") << "-3.5x" << -3.5;
        QTest::newRow("second point stops") << "1.5.5" << 1.5;
        QTest::newRow("exponent") << "1e3" << 1000.0;
        QTest::newRow("bare exponent letter") << "12e" << 12.0;
        QTest::newRow("hex") << "&H1F" << 31.0;
        QTest::newRow("clock text") << "12:00" << 12.0;
        QTest::newRow("category with blanks") << " 5 " << 5.0;
    }
    void val()
    {
        QFETCH(QString, text);
        QFETCH(double, value);
        QCOMPARE(Val(text), value);
    }

    void cintRoundsHalfToEvenAndNeverWraps()
    {
        QCOMPARE(CInt(2.5), qint16(2));
        QCOMPARE(CInt(3.5), qint16(4));
        QCOMPARE(CInt(-32768), qint16(-32768));
        for (double outside : {32767.5, 32768.0, -32769.0, 1e9}) {
            try {
                CInt(outside);
                QFAIL("no overflow raised");
            } catch (const RunError &e) {
                QCOMPARE(e.number(), 6);
                QCOMPARE(e.description(), QStringLiteral("Overflow"));
            }
        }
        QVERIFY_THROWS_EXCEPTION(RunError, addInt(32767, 1));
    }

    void splitAndTrim()
    {
        QCOMPARE(Split(QString(), QStringLiteral(";")).size(), 0);
        QCOMPARE(Split(QStringLiteral("a;"), QStringLiteral(";")), QStringList({"a", ""}));
        QCOMPARE(Trim(QStringLiteral(" \tx \r\n ")), QStringLiteral("\tx \r\n"));
        QVERIFY_THROWS_EXCEPTION(RunError, element(QStringList{"a"}, 1));
    }

    void listStoreIsOneBasedAndChecksBounds()
    {
        ListStore list(QStringLiteral("lvwTest"));
        list.addColumn(QStringLiteral("A"), 100);
        list.addColumn(QStringLiteral("B"), 0);
        QCOMPARE(list.add(QStringLiteral("first")), 1);
        list.setText(1, 2, QStringLiteral("sub"));
        QCOMPARE(list.row(1), QStringList({"first", "sub"}));
        QCOMPARE(list.widthTwips(2), 0);
        for (auto bad : {std::pair{0, 1}, std::pair{2, 1}}) {
            try {
                list.text(bad.first, bad.second);
                QFAIL("row out of range accepted");
            } catch (const RunError &e) {
                QCOMPARE(e.number(), int(Err::IndexOutOfBounds));
            }
        }
        try {
            list.setText(1, 3, QStringLiteral("x"));
            QFAIL("column out of range accepted");
        } catch (const RunError &e) {
            QCOMPARE(e.number(), int(Err::InvalidPropertyValue));
        }
    }
};

QTEST_GUILESS_MAIN(TestValues)
#include "tst_values.moc"
