// The operator's setup controls: what each one changes on the page, in the record and on disk.
#include "opmPageProbe.h"

class TestOpmControls : public QObject
{
    Q_OBJECT
private slots:
    void edit_data();
    void edit();
    void scenario_data();
    void scenario();
};

// An entry into a field of a Loss Meter page in dB/km, limits on, length 7: the limits and the
// length held, shown and stored after it; a rejected entry is corrected before the box shows.
void TestOpmControls::edit_data()
{
    QTest::addColumn<QString>("limits"); // minimum and maximum before the entry
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("after"); // minimum, maximum and length

    QTest::newRow("max above range") << "-60 10" << "enter max 12" << "10" << "-60 10 7";
    QTest::newRow("min below range") << "-60 10" << "enter min -61" << "-60" << "-60 10 7";
    QTest::newRow("min above max") << "-60 -10" << "enter min -5" << "-60" << "-60 -10 7";
    QTest::newRow("max below min") << "-20 -10" << "enter max -30" << "-10" << "-20 -10 7";
    QTest::newRow("min equal to max") << "-60 -10" << "enter min -10" << "-10" << "-10 -10 7";
    QTest::newRow("max at top") << "-60 0" << "enter max 10" << "10" << "-60 10 7";
    QTest::newRow("min at bottom") << "-30 0" << "enter min -60" << "-60" << "-60 0 7";
    QTest::newRow("min with decimals") << "-60 10" << "enter min -12.50" << "-12.50" << "-12.5 10 7";
    QTest::newRow("length zero") << "-60 10" << "enter length 0" << "1" << "-60 10 1";
    QTest::newRow("length negative") << "-60 10" << "enter length -1" << "1" << "-60 10 1";
    QTest::newRow("length above range") << "-60 10" << "enter length 100000" << "1" << "-60 10 1";
    QTest::newRow("length 1e30") << "-60 10" << "enter length 1e30" << "1" << "-60 10 1";
    QTest::newRow("length nan") << "-60 10" << "enter length nan" << "1" << "-60 10 1";
    QTest::newRow("min nan") << "-60 10" << "enter min nan" << "-60" << "-60 10 7";
    QTest::newRow("length at top") << "-60 10" << "enter length 99999" << "99999" << "-60 10 99999";
    QTest::newRow("length trailing zero") << "-60 10" << "enter length 2.50" << "2.50" << "-60 10 2.5";
}

void TestOpmControls::edit()
{
    QFETCH(QString, limits);
    QFETCH(QString, entry);
    QFETCH(QString, shown);
    QFETCH(QString, after);

    const QStringList before = limits.split(' '), held = after.split(' '), step = entry.split(' ');
    PageFixture fx({ { "TestMode", "LossMeter" }, { "LossUnit", "km" }, { "PowerLimit", "enable" },
                     { "LossLength", "7" }, { "PowerLimitMinimum", before[0] },
                     { "PowerLimitMaximum", before[1] } });
    Keys atBox;
    fx.closer.handler = [&](QWidget*) {
        atBox = fx.state();
        return false;
    };
    fx.act(entry);

    const Keys state = fx.state();
    const QString field = state.value(step[1]);
    QCOMPARE(field.mid(field.indexOf(' ') + 1).remove('\''), shown);
    QCOMPARE(state.value("min").section(' ', 0, 0) + ' ' + state.value("max").section(' ', 0, 0) + ' '
                     + state.value("length").section(' ', 0, 0), after);
    QCOMPARE(state.value("file:PowerLimitMinimum") + ' ' + state.value("file:PowerLimitMaximum") + ' '
                     + state.value("file:LossLength"), after);
    QCOMPARE(state.value("bar"), barFor(held[0].toFloat(), held[1].toFloat(), 0));
    const bool rejected = shown != step[2];
    QCOMPARE(state.value("boxes"), QString(rejected ? "1" : "0"));
    if (rejected) {
        QCOMPARE(state.value("box"), QString(step[1] == "length"
                ? "Error: The length must be greater than zero! Please input again."
                : "Error: Minimum must be less or equal to Maximum! Please input again."));
        QCOMPARE(atBox.value(step[1]), field);
    }
}

void TestOpmControls::scenario_data()
{
    addScenarioColumns();
    // dB empties and disables the length field but keeps the length; dB/km shows it again.
    const Keys lossKm { { "TestMode", "LossMeter" }, { "LossUnit", "km" }, { "PowerLimit", "enable" },
                        { "LossLength", "2.5" } };
    QTest::newRow("loss unit dB") << lossKm << "choose lossUnit 0"
            << Keys { { "lossUnit", "0/0 grey" }, { "enabled", "1110" }, { "length", "2.5 ''" },
                      { "file:LossUnit", "db" } };
    QTest::newRow("loss unit dB/km again") << lossKm << "choose lossUnit 0; choose lossUnit 1"
            << Keys { { "lossUnit", "1/1 white" }, { "enabled", "1111" }, { "length", "2.5 '2.5'" },
                      { "file:LossUnit", "km" } };

    // The mode sets layout and caption whatever the unit; the reader is never told of it.
    const Keys at1625 { { "Wavelength", "1625" } };
    QTest::newRow("mW") << at1625 << "click mW"
            << Keys { { "unit", "1" }, { "caption", "Power Limits (mW)" }, { "file:UNIT", "mW" } };
    QTest::newRow("Loss Meter") << at1625 << "click mW; choose mode 1"
            << Keys { { "mode", "1/1" }, { "layout", "loss" }, { "caption", "Loss Limits" },
                      { "target", "4" }, { "file:TestMode", "LossMeter" } };
    QTest::newRow("Power Meter again") << at1625 << "click mW; choose mode 1; choose mode 0"
            << Keys { { "mode", "0/0" }, { "layout", "power" }, { "caption", "Power Limits (dBm)" },
                      { "unit", "1" }, { "target", "4" }, { "file:TestMode", "PowerMeter" },
                      { "file:UNIT", "mW" } };

    // The reader is told the choice at once; the reference label follows in Loss Meter mode
    // only, and the page measures at what the reader reports.
    const Keys refs { { "Reference850", "-1" }, { "Reference1310", "-3" }, { "Reference1550", "-7.5" } };
    QTest::newRow("wavelength, Power Meter") << refs << "choose wave 3"
            << Keys { { "target", "3" }, { "refLabel", "Ref.: -1 dBm" }, { "wave", "3/0" },
                      { "file:Wavelength", "1550" } };
    QTest::newRow("wavelength, Loss Meter") << refs << "choose mode 1; choose wave 1"
            << Keys { { "target", "1" }, { "refLabel", "Ref.: -3 dBm" }, { "wave", "1/0" },
                      { "file:Wavelength", "1310" } };

    // Unchecked limits disable their fields, keep their texts and span the bar over -60..10.
    QTest::newRow("limits off")
            << with(lossKm, { { "PowerLimitMinimum", "-20" }, { "PowerLimitMaximum", "-10" } })
            << "click limits"
            << Keys { { "limits", "000" }, { "enabled", "0000" }, { "min", "-20 -20" },
                      { "max", "-10 -10" }, { "length", "2.5 '2.5'" }, { "bar", barFor(-60, 10, 0) },
                      { "file:PowerLimit", "disable" } };
    QTest::newRow("hold twice writes nothing") << Keys() << "click hold; click hold" << Keys();

    const Keys every { { "Wavelength", "1310" }, { "TestMode", "PowerMeter" }, { "UNIT", "mW" },
                       { "PowerLimit", "enable" }, { "PowerLimitMinimum", "-40" },
                       { "PowerLimitMaximum", "-2" }, { "LossUnit", "mi" }, { "LossLength", "3.5" },
                       { "Reference850", "-1" }, { "Reference1310", "-2" }, { "Reference1490", "-3" },
                       { "Reference1550", "-4" }, { "Reference1625", "-5" } };
    QTest::newRow("one change rewrites every key")
            << every << "click uW" << inFile(with(every, { { "UNIT", "uW" } }));
}

void TestOpmControls::scenario()
{
    runScenario();
}

QTEST_MAIN(TestOpmControls)
#include "tst_opmcontrols.moc"
