// The live reading on the Setup tab: its text, the unit button and the reading a save would
// store; colour, verdict and bar against the limits; following the reader's wavelength; hold; the
// summary line; and saving the reading from the Save button and from the reader.
#include "opmPageProbe.h"

using P = OpmPageProbe;
using B = QByteArray;

class TestOpmReading : public QObject
{
    Q_OBJECT
private slots:
    // A reading shown after one of -1 dBm at 850 nm. Texts as long as their field or longer fill it
    // without a NUL: each is read as far as its last byte.
    void display_data()
    {
        // savedValue, savedWave: what a save would store; capture: what a reference would take.
        addColumns<B, B, B, B, QString, QString, QString, QString, QString>(
            "setup wavelength value unit label unitButton savedValue savedWave capture");
        // Not "dB": no sign put in front.
        addRow("blanks removed, Latin-1 texts", B(), B("13\xb5"), B(" -12.5 "), B("d\xe9"),
               "-12.500 dBm", "dBm", "-12.500 dBm", "13\xb5", "-12.5");
        addRow("no light", B("UNIT=mW"), B("850"), B("---.--"), B("dBm"), "---.--", "dBm", "---.--",
               "850", "-1");
        addRow("relative, 15 characters: sign in front, cut", B(), B("1310"), B("12.345678901234"),
               B("dB"), "-12.346 dB", "dB", "-12.346 dB", "1310", "-12.34567890123");
        addRow("every text without NUL", B(), B("13101310"), B("-7.25xxxxxxxxxxx"), B("dBmdBmdB"),
               "-7.250 dBm", "dBm", "-7.250 dBm", "1310131", "-7.25xxxxxxxxxx");
        // The label keeps sixteen characters, the saved text keeps its unit and loses a digit.
        addRow("loss too long to save",
               B("TestMode=LossMeter\nLossUnit=km\nLossLength=2\nReference850=-5"), B("850"),
               B("20"), B("dBm"), "-12.500000 dB/km", "dBm", "-12.50000 dB/km", "850", "20");
    }
    void display()
    {
        QFETCH(B, setup);
        QFETCH(B, wavelength);
        QFETCH(B, value);
        QFETCH(B, unit);
        QFETCH(QString, label);
        QFETCH(QString, unitButton);
        QFETCH(QString, savedValue);
        QFETCH(QString, savedWave);
        QFETCH(QString, capture);

        PageFixture fx(setup);
        fx.show("850", "-1");
        fx.show(wavelength.constData(), value.constData(), unit.constData());
        QCOMPARE(P::reading(fx.page), label);
        QCOMPARE(P::unitButton(fx.page), unitButton);
        QCOMPARE(fieldText(P::result(fx.page).value), savedValue);
        QCOMPARE(fieldText(P::result(fx.page).waveLenth), savedWave);
        QCOMPARE(fieldText(P::capture(fx.page).value), capture);
        QVERIFY(P::fieldsEnded(fx.page));
    }
    // Both limits inclusive, also when typed with decimals the float cannot hold exactly; with the
    // limits off the reading is black, still judged, and the bar spans -60..10.
    void verdict_data()
    {
        addColumns<bool, B, B, B, QString, QString, int>(
            "limits minimum maximum value colour verdict barPercent");
        addRow("above upper", true, B("-20"), B("-10"), B("-9.99"), "red", "NO", 100);
        addRow("below lower", true, B("-20.5"), B("-10.25"), B("-20.501"), "red", "NO", 0);
        addRow("inside, odd limits", true, B("-20.5"), B("-10.25"), B("-12.347"), "green", "YES",
               79);
        addRow("at decimal lower", true, B("-20.3"), B("-10.1"), B("-20.3"), "green", "YES", 0);
        addRow("at decimal upper", true, B("-20.3"), B("-10.1"), B("-10.1"), "green", "YES", 100);
        addRow("not a number", true, B("-20"), B("-10"), B("nan"), "red", "NO", 0);
        // The bar spans -60..10: -5 is at 78 %.
        addRow("off, outside", false, B("-20"), B("-10"), B("-5"), "black", "NO", 78);
    }
    void verdict()
    {
        QFETCH(bool, limits);
        QFETCH(B, minimum);
        QFETCH(B, maximum);
        QFETCH(B, value);
        QFETCH(QString, colour);
        QFETCH(QString, verdict);
        QFETCH(int, barPercent);

        PageFixture fx("PowerLimit=enable\nPowerLimitMinimum=" + minimum
                       + "\nPowerLimitMaximum=" + maximum);
        if (!limits)
            P::click(fx.page, P::Limits);
        fx.show("1550", value.constData());
        QCOMPARE(P::readingColour(fx.page), colour);
        QCOMPARE(fieldText(P::result(fx.page).pass), verdict);
        QCOMPARE(P::bar(fx.page)->percent(), barPercent);
    }
    // The limits a save would store follow a limit entered between two ticks, down to its sign.
    void limitsOfASave()
    {
        PageFixture fx("PowerLimit=enable\nPowerLimitMinimum=0");
        fx.show("1550", "-12.34");
        P::enter(fx.page, P::Min, "-0");
        P::tick(fx.page);
        QCOMPARE(fieldText(P::result(fx.page).minimum), QString("-0.000000"));
    }
    // The selector and the reference follow the reader's wavelength if it is one of the five; the
    // switching tick still measures against the wavelength held before it. The reader is not told.
    void followsReader()
    {
        PageFixture fx("TestMode=LossMeter\nReference850=-5\nReference1490=-3.25");
        fx.show("1490", "-8.5");
        P::tick(fx.page);
        QCOMPARE(P::selector(fx.page, P::Wave)->currentIndex(), 2);
        QCOMPARE(P::waveLength(fx.page), 2);
        QCOMPARE(fieldText(P::result(fx.page).ref), QString("-3.25"));
        QCOMPARE(P::reading(fx.page), QString("5.250000 dB"));
        fx.show("980", "-9.75");
        QCOMPARE(P::selector(fx.page, P::Wave)->currentIndex(), 2);
        QCOMPARE(P::reading(fx.page), QString("6.500000 dB"));
        QCOMPARE(fx.reader.record()->wavelenthTarget, 0);
    }
    // On hold the record is not read and the reader's save request waits; the title says so in
    // either mode. Released, the next tick reads and saves; the summary gives the saved reading's
    // verdict with the limits on.
    void hold()
    {
        PageFixture fx("PowerLimit=enable");
        fx.show("1310", "-7");
        P::click(fx.page, P::Hold);
        fx.reader.record()->needSave = 1;
        fx.show("1310", "-3");
        QCOMPARE(P::title(fx.page), QString("Optical Power       \t      Hold"));
        QCOMPARE(P::reading(fx.page), QString("-7.000 dBm"));
        P::choose(fx.page, P::Mode, 1);
        P::tick(fx.page);
        QCOMPARE(P::title(fx.page), QString("Loss Meter   Hold"));
        QCOMPARE(fx.reader.record()->needSave, 1);
        P::click(fx.page, P::Hold);
        P::tick(fx.page);
        QCOMPARE(P::title(fx.page), QString("Loss Meter"));
        QCOMPARE(P::reading(fx.page), QString("3.000000 dB"));
        QCOMPARE(fx.reader.record()->needSave, 0);
        QCOMPARE(fx.stored(), 1);
        P::tick(fx.page);
        QCOMPARE(P::summary(fx.page),
                 QString("Last Saved - Loc#1 Wave length:1310 nm , Mode:Loss Meter , "
                         "Value:3.000000 dB , Pass:YES"));
    }
    // Saves by the button or by the reader's request, the reader in one state from the second
    // reading on. Only a valid reading at the moment of the save is stored, twelve at most: each
    // save past the twelfth is refused with a box, and the reader's request is cleared all the
    // same. From the next tick on, the summary names the last saved reading, without a verdict with
    // the limits off.
    void saving_data()
    {
        addColumns<int, int, int, QString, QString, int, int, int, QString>(
            "presses requests flag label colour needSave stored boxes summary");
        const QString saved = QString::fromLatin1("Last Saved - Loc#%1 Wave length:1\xe9\xb5 nm , "
                                                  "Mode:Power Meter , Value:-3.000 dBm");
        addRow("no reading", 1, 1, 0, "-7.000 dBm", "red", 1, 0, 0, " ");
        addRow("not connected", 1, 1, 2, "OPM Not Connected!", "red", 1, 0, 0, " ");
        addRow("state 3", 1, 1, 3, "-3.000 dBm", "black", 0, 0, 0, " ");
        addRow("reading", 1, 1, 1, "-3.000 dBm", "black", 0, 2, 0, saved.arg(2));
        addRow("thirteenth save", 13, 0, 1, "-3.000 dBm", "black", 0, 12, 1, saved.arg(12));
        addRow("request on every tick", 0, 14, 1, "-3.000 dBm", "black", 0, 12, 2, saved.arg(12));
    }
    void saving()
    {
        QFETCH(int, presses);
        QFETCH(int, requests);
        QFETCH(int, flag);
        QFETCH(QString, label);
        QFETCH(QString, colour);
        QFETCH(int, needSave);
        QFETCH(int, stored);
        QFETCH(int, boxes);
        QFETCH(QString, summary);

        PageFixture fx;
        fx.show("1310", "-7");
        for (int i = 0; i < qMax(requests, 1); ++i) {
            fx.reader.record()->needSave = i < requests;
            fx.show("1\xe9\xb5", "-3", "dBm", flag);
        }
        for (int i = 0; i < presses; ++i)
            P::click(fx.page, P::Save);
        P::tick(fx.page);
        QCOMPARE(P::reading(fx.page), label);
        QCOMPARE(P::readingColour(fx.page), colour);
        QCOMPARE(fx.reader.record()->needSave, needSave);
        QCOMPARE(fx.stored(), stored);
        QCOMPARE(fx.closer.count(), boxes);
        if (boxes)
            QCOMPARE(fx.closer.boxes().first(), QString("Warning: Exceeds max allowed results!"));
        QCOMPARE(P::summary(fx.page), summary);
    }
};

QTEST_MAIN(TestOpmReading)
#include "tst_opmreading.moc"
