// The reading display's arithmetic and text, without a page: each mode and unit, the reader's
// relative levels, no light, and values no reader should send.
#include "fixedText.h"
#include "opmReading.h"

#include <QtTest>

#include <cstring>

class TestReadingText : public QObject
{
    Q_OBJECT
private slots:
    void format_data();
    void format();
};

void TestReadingText::format_data()
{
    // The page's settings: "power <unit>" or "loss <unit> <length> <reference>".
    QTest::addColumn<QString>("settings");
    QTest::addColumn<QByteArray>("value"); // with the reader's unit after a blank
    QTest::addColumn<QString>("shown");    // text | limitsUnit | fiberLength ("was": unchanged)

    QTest::newRow("dBm") << "power dBm" << QByteArray("-3.21 dBm") << "-3.210 dBm|dBm|was";
    QTest::newRow("mW -10") << "power mW" << QByteArray("-10 dBm") << "0.100000 mW|mW|was";
    QTest::newRow("mW 0") << "power mW" << QByteArray("0 dBm") << "1.000000 mW|mW|was";
    QTest::newRow("uW -10") << "power uW" << QByteArray("-10 dBm") << "100.000000 uW|uW|was";
    QTest::newRow("relative level") << "power dBm" << QByteArray("-2.5 dB") << "-2.500 dB|dB|was";
    QTest::newRow("no light") << "power mW" << QByteArray("---.-- dBm") << "---.--|was|was";
    QTest::newRow("no light, loss") << "loss dB/km 2 -5" << QByteArray("---.-- dBm") << "---.--|was|was";
    QTest::newRow("loss dB") << "loss dB 2 -5" << QByteArray("-8 dBm") << "3.000000 dB|was|";
    QTest::newRow("loss dB/km") << "loss dB/km 2 -5" << QByteArray("-9 dBm") << "2.000000 dB/km|was|2.000000 km";
    QTest::newRow("loss dB/mi") << "loss dB/mi 2.5 -5" << QByteArray("-10 dBm") << "2.000000 dB/mi|was|2.500000 mi";
    QTest::newRow("loss, 16 characters") << "loss dB/km 2 -5" << QByteArray("20 dBm") << "-12.500000 dB/km|was|2.000000 km";
    QTest::newRow("longest length") << "loss dB/km 99999 0" << QByteArray("-1 dBm") << "0.000010 dB/km|was|99999.000000 km";
    QTest::newRow("reference not a number") << "loss dB 1 abc" << QByteArray("-8 dBm") << "8.000000 dB|was|";
    // Beyond a float, or no number at all: defined texts, no undefined conversion.
    QTest::newRow("nan") << "power dBm" << QByteArray("nan dBm") << "nan dBm|dBm|was";
    QTest::newRow("inf mW") << "power mW" << QByteArray("inf dBm") << "inf mW|mW|was";
    QTest::newRow("1e308") << "power dBm" << QByteArray("1e308 dBm") << "inf dBm|dBm|was";
    QTest::newRow("1e400") << "power dBm" << QByteArray("-1e400 dBm") << "-inf dBm|dBm|was";
    QTest::newRow("-1e-320") << "power dBm" << QByteArray("-1e-320 dBm") << "-0.000 dBm|dBm|was";
    QTest::newRow("empty") << "power dBm" << QByteArray(" dBm") << "0.000 dBm|dBm|was";
    QTest::newRow("loss over a tiny length") << "loss dB/km 1e-30 1e30" << QByteArray("0 dBm") << "inf dB/km|was|0.000000 km";
    // A mode or unit the page does not know: nothing written.
    QTest::newRow("unknown unit") << "power 7" << QByteArray("-3 dBm") << "|was|was";
    QTest::newRow("unknown loss unit") << "loss 7 1 0" << QByteArray("-3 dBm") << "|was|was";
}

void TestReadingText::format()
{
    QFETCH(QString, settings);
    QFETCH(QByteArray, value);
    QFETCH(QString, shown);
    static const char* const units[] = { "dBm", "mW", "uW", "dB", "dB/km", "dB/mi" };
    const QStringList s = settings.split(' ');
    int unit = s[1].toInt();
    for (int i = 0; i < 6; ++i)
        unit = s[1] == units[i] ? i % 3 : unit;
    const QByteArray reference = s.value(3).toLatin1();
    const OpmDisplaySettings display = { s[0] == "power" ? PowerMeter : s[0] == "loss" ? LossMeter : TestModeType(7),
                                         RusultUnit(unit), LossLengthType(unit), s.value(2).toFloat(),
                                         reference.constData() };
    const QList<QByteArray> reading = value.split(' ');

    Result result;
    std::memset(&result, 0, sizeof result);
    FixedText::copy(result.limitsUnit, "was");
    FixedText::copy(result.fiberLength, "was");
    char text[1024];
    std::memset(text, 0, sizeof text);
    const bool known = opmFormatReading(display, reading[0].constData(), reading[1].constData(), text,
                                        sizeof text, &result);
    QCOMPARE(known, !shown.startsWith('|'));
    QCOMPARE(QString::fromLatin1(text) + '|' + result.limitsUnit + '|' + result.fiberLength, shown);
}

QTEST_APPLESS_MAIN(TestReadingText)
#include "tst_readingtext.moc"
