// The live reading on the Setup tab: colour and verdict against the limits, the bar, the unit
// button, following the reader's wavelength, hold, the summary line, values no reader should
// send, and saving the reading from the Save button and from the reader.
#include "opmPageProbe.h"

class TestOpmReading : public QObject
{
    Q_OBJECT
private slots:
    void scenario_data();
    void scenario();
};

void TestOpmReading::scenario_data()
{
    addScenarioColumns();
    const QString limits = "PowerLimit=enable; PowerLimitMinimum=%1; PowerLimitMaximum=%2";
    // A reading shown after one of -1 dBm.
    const QString after = "show 850 -1; show 850 ";
    QTest::newRow("dBm")
        << "" << after + "-3.21"
        << "label=-3.210 dBm; value=-3.210 dBm; unitButton=dBm; colour=black; testMode=Power Meter;"
           "title=Optical Power; waveLenth=850; bar="
            + barFor(-60, 10, -3.21);
    QTest::newRow("relative dB") << "" << after + "2.5 dB"
                                 << "label=-2.500 dB; unitButton=dB; limitsUnit=dB; bar="
            + barFor(-60, 10, -2.5);
    QTest::newRow("blanks") << "" << after + "_-12.5_"
                            << "label=-12.500 dBm; capture=-12.5/0";
    QTest::newRow("no light") << "UNIT=mW" << after + "---.--"
                              << "label=---.--; value=---.--; limitsUnit=mW; capture=-1/0; bar="
            + barFor(-60, 10, 0);
    // Texts that fill their fields without a NUL: each is read as far as its last byte, which
    // counts as its end. The value: fifteen characters; with the sign put in front, cut there.
    QTest::newRow("no NUL") << ""
                            << "show 1310 -12.3456789012345"
                            << "label=-12.346 dBm; capture=-12.34567890123/0";
    QTest::newRow("15 characters, relative") << ""
                                             << "show 1310 12.345678901234 dB"
                                             << "label=-12.346 dB";
    QTest::newRow("wavelength without NUL")
        << ""
        << "show 16251625 -3.5; click save"
        << "label=-3.500 dBm; wave=0/0; waveLenth=1625162; stored=1";
    // Not "dB": no sign put in front.
    QTest::newRow("unit without NUL") << ""
                                      << "show 1310 3.5 dBdBdBdB"
                                      << "label=3.500 dBm; unitButton=dBm; wave=1/1";
    QTest::newRow("every text without NUL")
        << ""
        << "show 13101310 -7.25xxxxxxxxxxx dBmdBmdB; click save"
        << "label=-7.250 dBm; value=-7.250 dBm; wave=0/0; waveLenth=1310131; "
           "capture=-7.25xxxxxxxxxx/0; stored=1";
    // The label keeps sixteen characters, the saved text keeps its unit and loses a digit.
    QTest::newRow("loss too long to save")
        << "TestMode=LossMeter; LossUnit=km; LossLength=2; Reference850=-5" << after + "20"
        << "label=-12.500000 dB/km; value=-12.50000 dB/km; testMode=Loss Meter; "
           "fiberLength=2.000000 km";

    // Both limits inclusive, also when typed with decimals the float cannot hold exactly; with
    // the limits off the reading is black and still judged.
    const QString in = "colour=green; pass=1; verdict=YES", out = "colour=red; pass=0; verdict=NO";
    const QString range = limits.arg(-20).arg(-10);
    QTest::newRow("at upper") << range << "show 1550 -10" << in + "; bar=" + barFor(-20, -10, -10);
    QTest::newRow("above upper") << range << "show 1550 -9.99" << out;
    QTest::newRow("at lower") << range << "show 1550 -20" << in;
    QTest::newRow("at decimal lower")
        << limits.arg("-20.3").arg("-10.1") << "show 1550 -20.3" << in;
    QTest::newRow("at decimal upper")
        << limits.arg("-20.3").arg("-10.1") << "show 1550 -10.1" << in;
    QTest::newRow("not a number") << range << "show 1550 nan" << out + "; label=nan dBm";
    QTest::newRow("off, inside") << range << "click limits; show 1550 -15"
                                 << "colour=black; pass=1; file:PowerLimit=disable; bar="
            + barFor(-60, 10, -15);
    QTest::newRow("off, outside") << range << "click limits; show 1550 -5"
                                  << "colour=black; pass=0; verdict=NO; file:PowerLimit=disable";
    // The limits a save would store follow a limit entered between two ticks, down to its sign.
    QTest::newRow("new limit") << ""
                               << "show 1550 -12.34; enter min 0; tick; enter min -0; tick"
                               << "resultLimits=-0.000000 10.000000; file:PowerLimitMinimum=0";

    // On hold the record is not read and the reader's save request waits.
    const QString held = "show 1310 -7; click hold; request; show 1310 -3";
    QTest::newRow("hold")
        << "" << held
        << "title=Optical Power       \t      Hold; label=-7.000 dBm; needSave=1; stored=0";
    QTest::newRow("hold released")
        << "" << held + "; choose mode 1; tick; click hold; tick"
        << "title=Loss Meter; label=3.000000 dB; needSave=0; stored=1; file:TestMode=LossMeter";
    QTest::newRow("hold in Loss Meter mode")
        << "" << held + "; choose mode 1; tick"
        << "title=Loss Meter   Hold; label=-7.000 dBm; file:TestMode=LossMeter";

    // The selector and the reference follow the reader's wavelength if it is one of the five;
    // the switching tick still measures against the wavelength held before it.
    const QString refs = "TestMode=LossMeter; Reference850=-5; Reference1490=-3";
    const QString at1490 = "wave=2/2; ref=-3; target=0; ";
    QTest::newRow("measures at 1490")
        << refs << "show 1490 -8; tick" << at1490 + "label=5.000000 dB";
    QTest::newRow("980 changes nothing")
        << refs << "show 1490 -8; show 980 -9" << at1490 + "label=6.000000 dB";

    // The summary shows the last saved reading from the next tick on; the verdict with the limits.
    const QString saved =
        "summary=Last Saved - Loc#1 Wave length:1550 nm , Mode:Power Meter , Value:-12.340 dBm";
    const QString steps = "show 1550 -12.34; click save; tick";
    QTest::newRow("summary at the save") << ""
                                         << "show 1550 -12.34; click save"
                                         << "summary=' '; stored=1";
    QTest::newRow("summary, limits off") << "" << steps << saved;
    QTest::newRow("summary, limits on, pass")
        << limits.arg(-60).arg(10) << steps << saved + " , Pass:YES";
    QTest::newRow("summary, limits on, fail")
        << limits.arg(-60).arg(-20) << steps << saved + " , Pass:NO";

    // Twelve results at most: the thirteenth save, by the button or by the reader, is refused
    // with the one box; a reader asking on every tick gets one box per request past the twelfth.
    const QString twelve = "show 1550 -12.34" + QString("; click save").repeated(12);
    const QString full = "box=Warning: Exceeds max allowed results!; stored=12; ";
    QTest::newRow("thirteenth save") << "" << twelve + "; click save" << full + "boxes=1";
    QTest::newRow("request on every tick")
        << ""
        << "show 1550 -12.34" + QString("; request; tick").repeated(14)
        << full + "boxes=2; needSave=0";
    // A reading of -7 dBm, then the reader's state and save request with the next one, then Save:
    // only a valid reading at the moment of the save is stored.
    const QString request = "show 1310 -7; request; show 1310 -3 dBm %1; click save";
    QTest::newRow("no reading") << "" << request.arg(0)
                                << "label=-7.000 dBm; colour=red; needSave=1; stored=0";
    QTest::newRow("not connected")
        << "" << request.arg(2) << "label=OPM Not Connected!; colour=red; needSave=1; stored=0";
    QTest::newRow("state 3") << "" << request.arg(3)
                             << "label=-3.000 dBm; colour=black; needSave=0; stored=0";
    QTest::newRow("reading") << "" << request.arg(1)
                             << "label=-3.000 dBm; needSave=0; stored=2; boxes=0";
}

void TestOpmReading::scenario() { runScenario(); }

QTEST_MAIN(TestOpmReading)
#include "tst_opmreading.moc"
