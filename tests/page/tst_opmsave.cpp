// Saving the displayed reading into the result store, from the Save button and from the reader.
#include "opmPageProbe.h"

class TestOpmSave : public QObject
{
    Q_OBJECT
private slots:
    void scenario_data();
    void scenario();
};

void TestOpmSave::scenario_data()
{
    addScenarioColumns();
    // Twelve results at most: the thirteenth save, by the button or by the reader, is refused
    // with the one box.
    const QString twelve = "show 1550 -12.34" + QString("; click save").repeated(12);
    const QString full = "Warning: Exceeds max allowed results!";
    QTest::newRow("thirteenth save") << Keys() << twelve + "; click save"
            << Keys { { "stored", "12" }, { "boxes", "1" }, { "box", full } };
    QTest::newRow("reader's save into a full store") << Keys() << twelve + "; request; tick"
            << Keys { { "stored", "12" }, { "boxes", "1" }, { "box", full }, { "needSave", "0" } };
    // A reader asking on every tick: one box for each request past the twelfth.
    QTest::newRow("request on every tick")
            << Keys() << "show 1550 -12.34" + QString("; request; tick").repeated(14)
            << Keys { { "stored", "12" }, { "boxes", "2" }, { "box", full }, { "needSave", "0" } };

    // A reading of -7 dBm, then the reader's state and save request with the next one, then Save:
    // only a valid reading at the moment of the save is stored.
    const QString steps = "show 1310 -7; request; show 1310 -3 dBm %1; click save";
    const Keys kept { { "label", "-7.000 dBm" }, { "colour", "red" }, { "needSave", "1" },
                      { "stored", "0" } };
    const Keys shown { { "label", "-3.000 dBm" }, { "colour", "black" }, { "needSave", "0" } };
    QTest::newRow("no reading") << Keys() << steps.arg(0) << kept;
    QTest::newRow("not connected") << Keys() << steps.arg(2)
                                   << with(kept, { { "label", "OPM Not Connected!" } });
    for (int other : { 3, -1, 7 })
        TestCompat::addRow("state %d", other)
                << Keys() << steps.arg(other) << with(shown, { { "stored", "0" } });
    QTest::newRow("reading") << Keys() << steps.arg(1)
                             << with(shown, { { "stored", "2" }, { "boxes", "0" } });

    // The limits a save would store follow a limit entered between two ticks, down to its sign.
    QTest::newRow("new limit") << Keys() << "show 1550 -12.34; enter min -20; tick"
            << Keys { { "resultLimits", "-20.000000 10.000000" }, { "file:PowerLimitMinimum", "-20" } };
    QTest::newRow("zero of the other sign") << Keys()
            << "show 1550 -12.34; enter min 0; tick; enter min -0; tick"
            << Keys { { "resultLimits", "-0.000000 10.000000" }, { "file:PowerLimitMinimum", "0" } };
}

void TestOpmSave::scenario()
{
    runScenario();
}

QTEST_MAIN(TestOpmSave)
#include "tst_opmsave.moc"
