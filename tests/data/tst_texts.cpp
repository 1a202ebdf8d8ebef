// Texts of fixed width and the reading's text: bounded copies, which never run past a field and
// keep the unit of a measurement that does not fit; and the reading display's arithmetic and
// text without a page, in each mode and unit, for no light and values no reader should send (the
// reading as the page shows it: tst_setuptab).
#include "fixedText.h"
#include "opmReading.h"
#include "testSupport.h"

#include <QtTest>

#include <cstring>

class TestTexts : public QObject
{
    Q_OBJECT
private slots:
    // Every row goes through the plain copy, the copy of a 16-byte field of another record (the
    // source with garbage behind its NUL, or its first 16 bytes and no NUL) and the copy of a
    // measurement, each into a 16-byte field between guard bytes.
    void copy_data()
    {
        // source: a null text stands for a null pointer
        addColumns<QString, QString, QString>("source copied measured");
        addRow("null", QString(), "", "");
        addRow("one too long", "1234567890123456", "123456789012345", "123456789012345");
        addRow("exact fit", "-1.500000 dB/km", "-1.500000 dB/km", "-1.500000 dB/km");
        addRow("one digit dropped", "-12.500000 dB/km", "-12.500000 dB/k", "-12.50000 dB/km");
        addRow("every digit and the point dropped", "-1234567.500000 dB/km", "-1234567.500000",
               "-1234567 dB/km");
        addRow("still too long: cut", "-12345678.500000 dB/km", "-12345678.50000",
               "-12345678.50000");
        addRow("point only in the unit: cut", "12 dB.km/xxxxxxxxx", "12 dB.km/xxxxxx",
               "12 dB.km/xxxxxx");
    }

    void copy()
    {
        QFETCH(QString, source);
        QFETCH(QString, copied);
        QFETCH(QString, measured);
        const QByteArray bytes = source.toLatin1();
        const char* src = source.isNull() ? 0 : bytes.constData();
        char field[16];
        std::memset(field, 'X', sizeof field);
        std::memcpy(field, bytes.constData(), std::min(sizeof field, size_t(bytes.size()) + 1));
        // A full field's last byte is its end.
        QCOMPARE(int(FixedText::length(field, sizeof field)), copied.size());

        char guarded[3][32];
        std::memset(guarded, '#', sizeof guarded);
        FixedText::copy(guarded[0] + 8, 16, src);
        FixedText::copyField(guarded[1] + 8, 16, field, 16);
        FixedText::copyMeasurement(guarded[2] + 8, 16, src);
        for (int way = 0; way < 3; ++way) {
            const char* const text = guarded[way] + 8;
            QCOMPARE(QByteArray(guarded[way], 8) + QByteArray(text + 16, 8), QByteArray(16, '#'));
            QCOMPARE(QString::fromLatin1(text, int(strnlen(text, 16))),
                     way == 2 ? measured : copied);
        }
    }

    void format_data()
    {
        // The page's settings: "power <unit>" or "loss <unit> <length> <reference>".
        // value: with the reader's unit after a blank
        // shown: text | limitsUnit | fiberLength ("was": unchanged)
        addColumns<QString, QString, QString>("settings value shown");

        addRow("mW -12.347", "power mW", "-12.347 dBm", "0.058251 mW|mW|was");
        addRow("uW -3.2147", "power uW", "-3.2147 dBm", "477.012756 uW|uW|was");
        addRow("no light, loss", "loss dB/km 2 -5", "---.-- dBm", "---.--|was|was");
        addRow("loss dB", "loss dB 2 -5.125", "-8.347 dBm", "3.222000 dB|was|");
        addRow("loss dB/km", "loss dB/km 2 -5.125", "-9.347 dBm", "2.111000 dB/km|was|2.000000 km");
        addRow("loss dB/mi", "loss dB/mi 2.5 -5.125", "-10.375 dBm",
               "2.100000 dB/mi|was|2.500000 mi");
        addRow("reference not a number", "loss dB 1 abc", "-8 dBm", "8.000000 dB|was|");
        // Beyond a float, or no number at all: defined texts, no undefined conversion.
        addRow("nan", "power dBm", "nan dBm", "nan dBm|dBm|was");
        addRow("inf mW", "power mW", "inf dBm", "inf mW|mW|was");
        addRow("1e308", "power dBm", "1e308 dBm", "inf dBm|dBm|was");
        addRow("1e400", "power dBm", "-1e400 dBm", "-inf dBm|dBm|was");
        addRow("-1e-320", "power dBm", "-1e-320 dBm", "-0.000 dBm|dBm|was");
        addRow("empty", "power dBm", " dBm", "0.000 dBm|dBm|was");
        // A unit the page does not know (within what its enumeration can hold): nothing written.
        addRow("unknown unit", "power 3", "-3 dBm", "|was|was");
        addRow("unknown loss unit", "loss 3 1 0", "-3 dBm", "|was|was");
    }

    void format()
    {
        QFETCH(QString, settings);
        QFETCH(QString, value);
        QFETCH(QString, shown);
        const QStringList s = settings.split(' ');
        // Each unit's place in its enumeration; "3" stands for a unit neither has.
        const int unit = QString("dBm mW uW 3 dB dB/km dB/mi").split(' ').indexOf(s[1]) % 4;
        const QByteArray reference = s.value(3).toLatin1();
        const OpmDisplaySettings display = { s[0] == "power" ? PowerMeter : LossMeter,
                                             RusultUnit(unit), LossLengthType(unit),
                                             s.value(2).toFloat(), reference.constData() };
        const QList<QByteArray> reading = value.toLatin1().split(' ');

        Result result = {};
        FixedText::copy(result.limitsUnit, "was");
        FixedText::copy(result.fiberLength, "was");
        char text[1024] = {};
        const bool known = opmFormatReading(display, reading[0].constData(), reading[1].constData(),
                                            text, sizeof text, &result);
        QCOMPARE(known, !shown.startsWith('|'));
        QCOMPARE(QString::fromLatin1(text) + '|' + result.limitsUnit + '|' + result.fiberLength,
                 shown);
    }
};

QTEST_APPLESS_MAIN(TestTexts)
#include "tst_texts.moc"
