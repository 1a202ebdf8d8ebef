// The live reading on the Setup tab: conversion, colour, limits, bar, following the reader's
// wavelength, hold, the summary line, and values no reader should send.
#include "opmPageProbe.h"

class TestOpmReading : public QObject
{
    Q_OBJECT
private slots:
    void scenario_data();
    void scenario();
    void hostileValues_data();
    void hostileValues();
};

void TestOpmReading::scenario_data()
{
    addScenarioColumns();
    const auto limits = [](const char* min, const char* max) {
        return Keys { { "PowerLimit", "enable" }, { "PowerLimitMinimum", min },
                      { "PowerLimitMaximum", max } };
    };
    // A reading shown after one of -1 dBm.
    const QString after = "show 850 -1; show 850 ";
    const Keys mW { { "UNIT", "mW" } };
    QTest::newRow("dBm") << Keys() << after + "-3.21"
            << Keys { { "label", "-3.210 dBm" }, { "value", "-3.210 dBm" }, { "limitsUnit", "dBm" },
                      { "unitButton", "dBm" }, { "colour", "black" }, { "testMode", "Power Meter" },
                      { "title", "Optical Power" }, { "bar", barFor(-60, 10, -3.21) } };
    QTest::newRow("mW -10") << mW << after + "-10"
            << Keys { { "label", "0.100000 mW" }, { "value", "0.100000 mW" }, { "limitsUnit", "mW" } };
    QTest::newRow("mW 0") << mW << after + "0" << Keys { { "label", "1.000000 mW" } };
    QTest::newRow("uW -10") << Keys { { "UNIT", "uW" } } << after + "-10"
            << Keys { { "label", "100.000000 uW" }, { "limitsUnit", "uW" } };
    QTest::newRow("relative dB") << Keys() << after + "2.5 dB"
            << Keys { { "label", "-2.500 dB" }, { "unitButton", "dB" }, { "limitsUnit", "dB" },
                      { "bar", barFor(-60, 10, -2.5) } };
    QTest::newRow("blanks") << Keys() << after + "_-12.5_"
                            << Keys { { "label", "-12.500 dBm" }, { "capture", "-12.5/0" } };
    // No light: the text as it is, the unit as before, the bar at 0.
    QTest::newRow("no light") << mW << after + "---.--"
            << Keys { { "label", "---.--" }, { "value", "---.--" }, { "limitsUnit", "mW" },
                      { "bar", barFor(-60, 10, 0) } };
    // Loss against a reference of -5 dBm, over 2 km or 2 mi.
    const auto loss = [](const char* unit) {
        return Keys { { "TestMode", "LossMeter" }, { "LossUnit", unit }, { "LossLength", "2" },
                      { "Reference850", "-5" } };
    };
    QTest::newRow("loss dB") << loss("db") << after + "-8"
            << Keys { { "label", "3.000000 dB" }, { "value", "3.000000 dB" }, { "fiberLength", "" },
                      { "testMode", "Loss Meter" }, { "colour", "black" }, { "bar", barFor(-60, 10, -8) } };
    QTest::newRow("loss dB/km") << loss("km") << after + "-9"
            << Keys { { "label", "2.000000 dB/km" }, { "fiberLength", "2.000000 km" } };
    QTest::newRow("loss dB/mi") << loss("mi") << after + "-9"
            << Keys { { "label", "2.000000 dB/mi" }, { "fiberLength", "2.000000 mi" } };
    // Sixteen characters on the label; the saved text keeps its unit and loses a digit.
    QTest::newRow("loss too long to save") << loss("km") << after + "20"
            << Keys { { "label", "-12.500000 dB/km" }, { "value", "-12.50000 dB/km" } };

    // Both limits inclusive, also when typed with decimals the float cannot hold exactly; with
    // the limits off the reading is black and still judged.
    const Keys in { { "colour", "green" }, { "pass", "1" }, { "verdict", "YES" } };
    const Keys out { { "colour", "red" }, { "pass", "0" }, { "verdict", "NO" } };
    const Keys range = limits("-20", "-10");
    QTest::newRow("at upper") << range << "show 1550 -10"
                              << with(in, { { "bar", barFor(-20, -10, -10) } });
    QTest::newRow("above upper") << range << "show 1550 -9.99" << out;
    QTest::newRow("at lower") << range << "show 1550 -20" << in;
    QTest::newRow("below lower") << range << "show 1550 -20.01" << out;
    QTest::newRow("at decimal lower") << limits("-20.3", "-10.1") << "show 1550 -20.3" << in;
    QTest::newRow("at decimal upper") << limits("-20.3", "-10.1") << "show 1550 -10.1" << in;
    QTest::newRow("off, inside") << range << "click limits; show 1550 -15"
            << Keys { { "colour", "black" }, { "pass", "1" }, { "bar", barFor(-60, 10, -15) },
                      { "file:PowerLimit", "disable" } };
    QTest::newRow("off, outside") << range << "click limits; show 1550 -5"
            << Keys { { "colour", "black" }, { "pass", "0" }, { "verdict", "NO" },
                      { "file:PowerLimit", "disable" } };

    // On hold the record is not read and the reader's save request waits.
    const QString held = "show 1310 -7; click hold; request; show 1310 -3";
    QTest::newRow("hold") << Keys() << held
            << Keys { { "title", "Optical Power       \t      Hold" }, { "label", "-7.000 dBm" },
                      { "needSave", "1" }, { "stored", "0" } };
    QTest::newRow("hold in Loss Meter mode") << Keys() << held + "; choose mode 1; tick"
            << Keys { { "title", "Loss Meter   Hold" }, { "label", "-7.000 dBm" },
                      { "file:TestMode", "LossMeter" } };
    QTest::newRow("hold released") << Keys() << held + "; choose mode 1; tick; click hold; tick"
            << Keys { { "title", "Loss Meter" }, { "label", "3.000000 dB" }, { "needSave", "0" },
                      { "stored", "1" }, { "file:TestMode", "LossMeter" } };

    // The selector and the reference follow the reader's wavelength if it is one of the five;
    // the switching tick still measures against the wavelength held before it.
    const Keys refs { { "TestMode", "LossMeter" }, { "Reference850", "-5" }, { "Reference1490", "-3" } };
    const Keys at1490 { { "wave", "2/2" }, { "ref", "-3" }, { "target", "0" } };
    QTest::newRow("follows 1490") << refs << "show 1490 -8"
                                  << with(at1490, { { "label", "3.000000 dB" } });
    QTest::newRow("measures at 1490") << refs << "show 1490 -8; tick"
                                      << with(at1490, { { "label", "5.000000 dB" } });
    for (const char* other : { "980", "0", "99999" }) {
        TestCompat::addRow("%s changes nothing", other)
                << refs << QString("show 1490 -8; show %1 -9").arg(other)
                << with(at1490, { { "label", "6.000000 dB" } });
    }

    // The summary shows the last saved reading from the next tick on.
    const QString saved = "Last Saved - Loc#1 Wave length:1550 nm , Mode:Power Meter , "
                          "Value:-12.340 dBm";
    const QString steps = "show 1550 -12.34; click save; tick";
    QTest::newRow("summary at the save") << Keys() << "show 1550 -12.34; click save"
                                         << Keys { { "summary", " " }, { "stored", "1" } };
    QTest::newRow("summary, limits off") << Keys() << steps << Keys { { "summary", saved } };
    QTest::newRow("summary, limits on, pass") << limits("-60", "10") << steps
                                              << Keys { { "summary", saved + " , Pass:YES" } };
    QTest::newRow("summary, limits on, fail") << limits("-60", "-20") << steps
                                              << Keys { { "summary", saved + " , Pass:NO" } };
}

void TestOpmReading::scenario()
{
    runScenario();
}

void TestOpmReading::hostileValues_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("readerUnit");
    QTest::addColumn<QString>("unit");
    QTest::addColumn<QString>("shown"); // when empty any defined text, failing the limits

    QTest::newRow("nan") << QByteArray("nan") << "dBm" << "dB" << "";
    QTest::newRow("inf mW") << QByteArray("inf") << "dBm" << "mW" << "";
    QTest::newRow("1e308") << QByteArray("1e308") << "dBm" << "dB" << "";
    QTest::newRow("1e400") << QByteArray("1e400") << "dBm" << "dB" << "";
    QTest::newRow("-1e-320") << QByteArray("-1e-320") << "dBm" << "dB" << "-0.000 dBm";
    QTest::newRow("-0") << QByteArray("-0") << "dBm" << "dB" << "-0.000 dBm";
    QTest::newRow("empty") << QByteArray("") << "dBm" << "dB" << "0.000 dBm";
    // Sixteen bytes without a NUL: the page reads fifteen of them.
    QTest::newRow("no NUL") << QByteArray("-12.345678901234", 16) << "dBm" << "dB" << "-12.346 dBm";
    // Fifteen characters plus the sign: the text is cut at fifteen.
    QTest::newRow("15 chars, relative") << QByteArray("12.345678901234") << "dB" << "dB" << "-12.346 dB";
}

void TestOpmReading::hostileValues()
{
    QFETCH(QByteArray, value);
    QFETCH(QString, readerUnit);
    QFETCH(QString, unit);
    QFETCH(QString, shown);

    PageFixture fx({ { "PowerLimit", "enable" }, { "UNIT", unit } }); // limits -60 to 10
    fx.reader.setReading("1310", qPrintable(readerUnit), "");
    char raw[16] = {};
    std::memcpy(raw, value.constData(), size_t(qMin(value.size(), 16)));
    fx.reader.setRawValue(raw);
    fx.act("tick");

    const QString text = fx.state().value("label");
    QVERIFY2(shown.isEmpty() || text == shown, qPrintable(text));
    static const QRegExp defined("^-?(nan|inf|[0-9]+\\.[0-9]+) (dBm|dB|mW)$");
    QVERIFY2(TestCompat::containsMatch(defined, text), qPrintable(text));
    // The saved value agrees with the label; it and the captured one end within their fields,
    // and the bar stays on its scale and can be painted.
    QVERIFY(text.startsWith(fx.state().value("value").section(' ', 0, 0).left(6)));
    fx.verify({ { "pass", shown.isEmpty() ? "0" : "1" }, { "colour", shown.isEmpty() ? "red" : "green" },
                { "terminated", "1" }, { "barInScale", "1" } });
    TestCompat::grab(fx.get());
}

QTEST_MAIN(TestOpmReading)
#include "tst_opmreading.moc"
