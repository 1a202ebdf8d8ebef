// The Setup tab's setup: the page as built and restored from the settings file (and the texts of
// that file kept as written), the operator's controls and entries, the reference dialog, and a
// page without a record.
#include "devicePaths.h"
#include "opmPageProbe.h"

#include <QSettings>

#include <cerrno>

#include <dlfcn.h>
#include <sys/shm.h>

using P = OpmPageProbe;
using B = QByteArray;

namespace {

bool g_failAttach = false;

// Loss Meter with a reference of its own at every wavelength but 1310 nm.
const QByteArray kReferences = "TestMode=LossMeter\nReference850=-1\nReference1310=0\n"
                               "Reference1490=-3\nReference1550=-4.125\nReference1625=-5";

// A Loss Meter page in dB/km, limits on, length 7, and these limits.
QByteArray lossPage(const char* minimum, const char* maximum)
{
    return QByteArray("TestMode=LossMeter\nLossUnit=km\nPowerLimit=enable\nLossLength=7\n"
                      "PowerLimitMinimum=")
        + minimum + "\nPowerLimitMaximum=" + maximum;
}

} // namespace

// Lets a test make the page's attachment fail as the system would.
extern "C" void* shmat(int shmid, const void* shmaddr, int shmflg) __THROW
{
    if (g_failAttach) {
        errno = ENOMEM;
        return reinterpret_cast<void*>(-1);
    }
    typedef void* (*Attach)(int, const void*, int);
    static const Attach real = reinterpret_cast<Attach>(dlsym(RTLD_NEXT, "shmat"));
    return real(shmid, shmaddr, shmflg);
}

class TestOpmSetup : public QObject
{
    Q_OBJECT
private slots:
    void restore_data();
    void restore();
    void keptAsWritten_data();
    void keptAsWritten();
    void roundTrip();
    void modeAndUnits();
    void wavelength_data();
    void wavelength();
    void entries_data();
    void entries();
    void referenceDialog_data();
    void referenceDialog();
    void pressedTwice();
    void shown();
    void withoutRecord();
};

void TestOpmSetup::restore_data()
{
    // selected: the wavelength selector's index; target: the one the reader is told; minimum,
    // maximum and length: the field's text, also the value held (no text: 1).
    addColumns<B, int, int, int, int, int, bool, QString, QString, QString, QString, QString,
               QString, QString, QString>("setup selected target mode unit lossUnit limits enabled "
                                          "minimum maximum length references refLabel lengthColour "
                                          "caption");
    const QString off = "0 0 0 0 0", ref = "Ref.: 0 dBm", power = "Power Limits (dBm)";
    addRow("no file", B(), 0, 0, 0, 0, 0, false, "", "-60", "10", "", off, ref, "grey", power);
    addRow("loss meter, km, limits on",
           B("TestMode=LossMeter\nLossUnit=km\nPowerLimit=enable\nLossLength=2.5"), 0, 0, 1, 0, 1,
           true, "min max lossUnit length", "-60", "10", "2.5", off, ref, "white", "Loss Limits");
    addRow("1550 with its reference", B("Wavelength=1550\nReference1550=-7.5"), 3, 3, 0, 0, 0,
           false, "", "-60", "10", "", "0 0 0 -7.5 0", "Ref.: -7.5 dBm", "grey", power);
    addRow("wavelength 980", B("Wavelength=980\nReference850=-1"), 0, 4, 0, 0, 0, false, "", "-60",
           "10", "", "-1 0 0 0 0", ref, "grey", power);
    addRow("mW", B("UNIT=mW"), 0, 0, 0, 1, 0, false, "", "-60", "10", "", off, ref, "grey",
           "Power Limits (mW)");
    addRow("uW, limits with decimals",
           B("UNIT=uW\nPowerLimit=enable\nPowerLimitMinimum=-12.347\nPowerLimitMaximum=-0.5"), 0, 0,
           0, 2, 0, true, "min max lossUnit", "-12.347", "-0.5", "", off, ref, "grey",
           "Power Limits (uW)");
    // Not a loss unit the page knows: no step, so the caption keeps the white it was built with.
    addRow("LossUnit dB", B("LossUnit=dB"), 0, 0, 0, 0, 0, false, "", "-60", "10", "", off, ref,
           "white", power);
    addRow("crossed limits", B("PowerLimit=enable\nPowerLimitMinimum=5\nPowerLimitMaximum=-5"), 0,
           0, 0, 0, 0, true, "min max lossUnit", "5", "-5", "", off, ref, "grey", power);
    // Cut to its field on the page; the file keeps it until a Set rewrites it.
    addRow("reference of 10 kB", "Reference850=" + B(10240, '7'), 0, 0, 0, 0, 0, false, "", "-60",
           "10", "", "777777777777777 0 0 0 0", "Ref.: 777777777777777 dBm", "grey", power);
    addRow("Latin-1 reference", B("Reference850=-1\xb5<&>x"), 0, 0, 0, 0, 0, false, "", "-60", "10",
           "", "-1\xb5<&>x 0 0 0 0", "Ref.: -1\xb5<&>x dBm", "grey", power);
    addRow("Latin-1 reference, as a save writes it", B("Reference1310=\"-2\\xe9,\""), 0, 0, 0, 0, 0,
           false, "", "-60", "10", "", "0 -2\xe9, 0 0 0", ref, "grey", power);
    const char* const lengths[] = { "abc", "0", "100000" };
    for (int i = 0; i < 3; ++i)
        addRow(QString("length ") + lengths[i],
               "LossUnit=mi\nPowerLimit=enable\nLossLength=" + B(lengths[i]), 0, 0, 0, 0, 2, true,
               "min max lossUnit length", "-60", "10", "1", off, ref, "white", power);
        // Keys differ in case: not the page's, kept in the file as they are. Qt 4's QSettings
        // matches keys in any case (it reads "Unit" as UNIT and writes UNIT into it), so there, as on
        // the set, this row does not hold.
#if QT_VERSION >= 0x050000
    addRow("keys in other case", B("wavelength=1550\nUnit=mW"), 0, 0, 0, 0, 0, false, "", "-60",
           "10", "", off, ref, "grey", power);
#endif
}

// Every start leaves a complete file: what was stored, the defaults for what was not, the check
// box's state written back; and no trace of a folder or file it could not use.
void TestOpmSetup::restore()
{
    QFETCH(B, setup);
    QFETCH(int, selected);
    QFETCH(int, target);
    QFETCH(int, mode);
    QFETCH(int, unit);
    QFETCH(int, lossUnit);
    QFETCH(bool, limits);
    QFETCH(QString, enabled);
    QFETCH(QString, minimum);
    QFETCH(QString, maximum);
    QFETCH(QString, length);
    QFETCH(QString, references);
    QFETCH(QString, refLabel);
    QFETCH(QString, lengthColour);
    QFETCH(QString, caption);

    StdoutCapture trace;
    PageFixture fx(setup, false);
    // What the reader was last told, so that a step that writes nothing shows.
    fx.reader.record()->wavelenthTarget = 4;
    fx.buildPage();
    QVERIFY(!trace.take().contains("cannot"));

    NerioOpm* p = fx.page;
    QCOMPARE(P::selector(p, P::Wave)->currentIndex(), selected);
    QCOMPARE(P::waveLength(p), 0); // until the reader reports one
    QCOMPARE(fx.reader.record()->wavelenthTarget, target);
    QCOMPARE(P::selector(p, P::Mode)->currentIndex(), mode);
    QCOMPARE(P::testMode(p), mode);
    QCOMPARE(P::layout(p), QString(mode ? "loss" : "power"));
    QCOMPARE(P::unit(p), unit);
    QCOMPARE(P::selector(p, P::LossUnit)->currentIndex(), lossUnit);
    QCOMPARE(P::lossUnit(p), lossUnit);
    QCOMPARE(P::lengthColour(p), lengthColour);
    QCOMPARE(P::button(p, P::Limits)->isChecked(), limits);
    QCOMPARE(P::powerLimits(p), limits);
    QCOMPARE(int(P::result(p).isLimit), int(limits));
    QCOMPARE(P::enabled(p), enabled);
    QCOMPARE(P::field(p, P::Min)->text(), minimum);
    QCOMPARE(P::minimum(p), minimum.toFloat());
    QCOMPARE(P::field(p, P::Max)->text(), maximum);
    QCOMPARE(P::maximum(p), maximum.toFloat());
    QCOMPARE(P::field(p, P::Length)->text(), length);
    QCOMPARE(P::length(p), length.isEmpty() ? 1.0f : length.toFloat());
    QCOMPARE(P::references(p), references);
    QCOMPARE(P::refLabel(p), refLabel);
    QCOMPARE(P::caption(p), caption);
    QCOMPARE(storedSetup(), setupLines(kSetupDefaults + setup));
}

void TestOpmSetup::keptAsWritten_data()
{
    addColumns<B, QString>("line text"); // line: the value of Reference850 in the file
    addRow("commas", B("1,5"), "1,5");
    addRow("commas and blanks", B("1, 5"), "1, 5");
    addRow("commas, as a save quotes them", B("\"1,5\""), "1,5");
    addRow("quote, as a save escapes it", B("a\\\"b"), "a\"b");
    addRow("quote left open", B("a\"b"), "a\"b");
    addRow("quoted word", B("a \"b\" c"), "a \"b\" c");
    addRow("semicolon", B("-1.5;x"), "-1.5;x");
    addRow("typed value", B("@Rect(1 2 3 4)"), "@Rect(1 2 3 4)");
    addRow("invalid value", B("@Invalid()"), "@Invalid()");
    addRow("byte array", B("@ByteArray(-3)"), "@ByteArray(-3)");
    addRow("at sign, as a save doubles it", B("@@x"), "@x");
    addRow("at sign", B("@x"), "@x");
    addRow("Latin-1 and markup", B("-1\xe9<&>"), "-1\xe9<&>");
}

// Stored setup texts that the settings class would read as something else: a list at a comma,
// a comment at a semicolon, a typed value at an '@', or a text running on at an open quote.
// Each comes back as the operator or the previous save wrote it, and the file written back
// reads the same, for the page and for QSettings.
void TestOpmSetup::keptAsWritten()
{
    QFETCH(B, line);
    QFETCH(QString, text);
    TestDeviceRoot root;
    const QString file = DevicePaths::settingFile();
    QVERIFY(root.writeFile("/home/Setting/opmSetup.conf",
                           "[COpmSetup]\nReference850=" + line + "\nReference1310=-2\n"));
    QByteArray firstSave;
    {
        COpmSetupConfig config;
        QCOMPARE(config.mreference850, text);
        QCOMPARE(config.mreference1310, QString("-2"));
        firstSave = root.readFile("/home/Setting/opmSetup.conf");
    }
    // A copy, so that QSettings parses the file rather than serve what it cached on writing it.
    const QString copy = root.file("/copy.conf");
    QVERIFY(QFile::copy(file, copy));
    QSettings written(copy, QSettings::IniFormat);
    QCOMPARE(written.value("COpmSetup/Reference850").type(), QVariant::String);
    QCOMPARE(written.value("COpmSetup/Reference850").toString(), text);
    QCOMPARE(written.value("COpmSetup/Reference1310").toString(), QString("-2"));

    COpmSetupConfig again;
    QCOMPARE(again.mreference850, text);
    QCOMPARE(root.readFile("/home/Setting/opmSetup.conf"), firstSave);
}

// Every setting changed through the controls comes back on a new page on the same folder; once
// the reader has reported its wavelength it measures as before: (-11.25 - -18.5) / 3.5 mi.
void TestOpmSetup::roundTrip()
{
    PageFixture fx;
    NerioOpm*& p = fx.page;
    P::click(p, P::UW);
    P::choose(p, P::Mode, 1);
    P::click(p, P::Limits);
    P::enter(p, P::Min, "-30.5");
    P::enter(p, P::Max, "-5");
    P::choose(p, P::LossUnit, 2);
    P::enter(p, P::Length, "3.5");
    P::choose(p, P::Wave, 2);
    fx.show("1490", "-11.25");
    P::click(p, P::Reference);
    P::click(p, P::Set);
    const QStringList stored = storedSetup();

    fx.reader.record()->wavelenthTarget = 0;
    fx.buildPage();
    fx.show("1490", "-18.5");
    P::tick(p);
    QCOMPARE(P::reading(p), QString("2.071429 dB/mi"));
    QCOMPARE(fx.reader.record()->wavelenthTarget, 2);
    QCOMPARE(P::unit(p), 2);
    QCOMPARE(P::testMode(p), 1);
    QCOMPARE(P::enabled(p), QString("min max lossUnit length"));
    QCOMPARE(P::field(p, P::Min)->text() + ' ' + P::field(p, P::Max)->text(), QString("-30.5 -5"));
    QCOMPARE(P::lossUnit(p), 2);
    QCOMPARE(P::field(p, P::Length)->text(), QString("3.5"));
    QCOMPARE(P::references(p), QString("0 0 -11.25 0 0"));
    QCOMPARE(fieldText(P::result(p).limitsUnit), QString("uW"));
    QCOMPARE(storedSetup(), stored);
    QCOMPARE(fx.closer.count(), 0);
}

// The mode sets layout and caption whatever the unit; the reader is never told of it. In Loss
// Meter mode, dB empties and disables the length field but keeps the length; dB/km shows it
// again. Unchecked limits disable their fields, keep their texts and span the bar over -60..10.
// Hold writes nothing; any change rewrites every key.
void TestOpmSetup::modeAndUnits()
{
    PageFixture fx("Wavelength=1625\nPowerLimit=enable\nPowerLimitMinimum=-40.5\n"
                   "PowerLimitMaximum=-2\nLossUnit=km\nLossLength=2.5\nReference1310=-2\xe9");
    NerioOpm* p = fx.page;
    QVERIFY(QFile::remove(DevicePaths::settingFile()));
    P::click(p, P::Hold);
    P::click(p, P::Hold);
    QCOMPARE(storedSetup(), QStringList());

    P::click(p, P::MW);
    QCOMPARE(P::unit(p), 1);
    QCOMPARE(P::caption(p), QString("Power Limits (mW)"));
    QCOMPARE(storedSetup(),
             setupLines("Wavelength=1625\nTestMode=PowerMeter\nUNIT=mW\nPowerLimit=enable\n"
                        "PowerLimitMinimum=-40.5\nPowerLimitMaximum=-2\nLossUnit=km\n"
                        "LossLength=2.5\nReference850=0\nReference1310=-2\xe9\nReference1490=0\n"
                        "Reference1550=0\nReference1625=0"));
    P::choose(p, P::Mode, 1);
    QCOMPARE(P::layout(p) + ' ' + P::caption(p), QString("loss Loss Limits"));
    QCOMPARE(storedValue("TestMode"), QString("LossMeter"));
    P::choose(p, P::LossUnit, 0);
    QCOMPARE(P::enabled(p) + " | " + P::field(p, P::Length)->text(),
             QString("min max lossUnit | "));
    QCOMPARE(P::lengthColour(p), QString("grey"));
    QCOMPARE(P::length(p), 2.5f);
    QCOMPARE(storedValue("LossUnit"), QString("db"));
    P::choose(p, P::LossUnit, 1);
    QCOMPARE(P::enabled(p) + " | " + P::field(p, P::Length)->text(),
             QString("min max lossUnit length | 2.5"));
    QCOMPARE(P::lengthColour(p), QString("white"));
    QCOMPARE(storedValue("LossUnit"), QString("km"));
    P::click(p, P::Limits);
    QCOMPARE(P::enabled(p), QString());
    QCOMPARE(P::field(p, P::Min)->text() + ' ' + P::field(p, P::Max)->text(), QString("-40.5 -2"));
    QCOMPARE(P::barRange(p), QString("-60.00..10.00"));
    QCOMPARE(storedValue("PowerLimit"), QString("disable"));
    // Only a retranslation captions the limits by the unit again.
    P::choose(p, P::Mode, 0);
    QCOMPARE(P::layout(p) + ' ' + P::caption(p), QString("power Power Limits (dBm)"));
    QCOMPARE(P::unit(p), 1);
    QCOMPARE(fx.reader.record()->wavelenthTarget, 4);
}

// The reader is told the choice at once; the reference label follows in Loss Meter mode only.
void TestOpmSetup::wavelength_data()
{
    addColumns<int, int, QString, QString>("mode chosen refLabel stored");
    addRow("Power Meter", 0, 3, "Ref.: -1 dBm", "1550");
    addRow("Loss Meter", 1, 1, "Ref.: -3.125 dBm", "1310");
    addRow("Loss Meter, 1625", 1, 4, "Ref.: -5 dBm", "1625");
}

void TestOpmSetup::wavelength()
{
    QFETCH(int, mode);
    QFETCH(int, chosen);
    QFETCH(QString, refLabel);
    QFETCH(QString, stored);

    PageFixture fx("Reference850=-1\nReference1310=-3.125\nReference1550=-7.5\nReference1625=-5");
    P::choose(fx.page, P::Mode, mode);
    P::choose(fx.page, P::Wave, chosen);
    QCOMPARE(fx.reader.record()->wavelenthTarget, chosen);
    QCOMPARE(P::refLabel(fx.page), refLabel);
    QCOMPARE(P::waveLength(fx.page), 0);
    QCOMPARE(storedValue("Wavelength"), stored);
}

// An entry into a limit or the length of a Loss Meter page in dB/km, limits on, length 7: a
// refused one is put back in its field and boxed; the bar follows the limits.
void TestOpmSetup::entries_data()
{
    // text: the field's afterwards; held: the value the page holds; box: none when empty.
    addColumns<B, int, QString, QString, float, QString, QString, QString>(
        "setup field entry text held stored box barRange");
    const QString limitsBox =
        "Error: Minimum must be less or equal to Maximum! Please input again.";
    const QString lengthBox = "Error: The length must be greater than zero! Please input again.";
    const B wide = lossPage("-60", "10");
    const QString range = "-60.00..10.00";
    addRow("max above range", wide, int(P::Max), "12", "10", 10.0f, "10", limitsBox, range);
    addRow("min below range", wide, int(P::Min), "-61", "-60", -60.0f, "-60", limitsBox, range);
    addRow("min above max", lossPage("-60", "-10"), int(P::Min), "-5", "-60", -60.0f, "-60",
           limitsBox, "-60.00..-10.00");
    addRow("max below min", lossPage("-20", "-10"), int(P::Max), "-30", "-10", -10.0f, "-10",
           limitsBox, "-20.00..-10.00");
    addRow("min nan", wide, int(P::Min), "nan", "-60", -60.0f, "-60", limitsBox, range);
    addRow("min equal to max", lossPage("-60", "-10.25"), int(P::Min), "-10.25", "-10.25", -10.25f,
           "-10.25", "", "-10.25..-10.25");
    addRow("max at top", lossPage("-60", "0"), int(P::Max), "10", "10", 10.0f, "10", "", range);
    addRow("min with decimals", wide, int(P::Min), "-12.347", "-12.347", -12.347f, "-12.347", "",
           "-12.35..10.00");
    addRow("length zero", wide, int(P::Length), "0", "1", 1.0f, "1", lengthBox, range);
    addRow("length above range", wide, int(P::Length), "100000", "1", 1.0f, "1", lengthBox, range);
    addRow("length nan", wide, int(P::Length), "nan", "1", 1.0f, "1", lengthBox, range);
    addRow("length at top", wide, int(P::Length), "99999", "99999", 99999.0f, "99999", "", range);
    addRow("length trailing zero", wide, int(P::Length), "2.50", "2.50", 2.5f, "2.5", "", range);
}

void TestOpmSetup::entries()
{
    QFETCH(B, setup);
    QFETCH(int, field);
    QFETCH(QString, entry);
    QFETCH(QString, text);
    QFETCH(float, held);
    QFETCH(QString, stored);
    QFETCH(QString, box);
    QFETCH(QString, barRange);

    PageFixture fx(setup);
    QVERIFY(QFile::remove(DevicePaths::settingFile()));
    P::enter(fx.page, P::Field(field), entry);
    const float values[] = { P::minimum(fx.page), P::maximum(fx.page), P::length(fx.page) };
    const char* const keys[] = { "PowerLimitMinimum", "PowerLimitMaximum", "LossLength" };
    QCOMPARE(P::field(fx.page, P::Field(field))->text(), text);
    QCOMPARE(values[field], held);
    QCOMPARE(storedValue(keys[field]), stored);
    QCOMPARE(fx.closer.boxes().join(""), box);
    QCOMPARE(P::barRange(fx.page), barRange);
}

// The modal dialog names the reading captured at the press and the stored reference. Set stores
// the captured reading for the wavelength reported at Set; however the dialog goes without Set,
// nothing is stored and the capture follows the reading again.
void TestOpmSetup::referenceDialog_data()
{
    // before: the values shown at 1310 nm before the press; during: the wavelength shown while
    // open (-20 dBm); answer: Set, Cancel, or -1 Escape, -2 closed, -3 left open; dialog: what it
    // said; stored: the file's Reference1310 and Reference1550; capture: what a press would take.
    addColumns<B, B, int, QString, QString, QString, QString, QString>(
        "before during answer dialog references refLabel stored capture");
    const QString keep =
        "\nOr press Cancel instead if you prefer to keep the previously stored value of ";
    const QString at1310 = "Current Optical Level:-12.347 dBm at 1310 nm" + keep + "0 dBm";
    const QString kept = "-1 0 -3 -4.125 -5";
    const int set = P::Set;
    addRow("open", B("-12.347"), B("1310"), -3, at1310, kept, "Ref.: -1 dBm", "0 -4.125",
           "-12.347");
    addRow("set", B("-12.347"), B("1310"), set, at1310, "-1 -12.347 -3 -4.125 -5",
           "Ref.: -12.347 dBm", "-12.347 -4.125", "-20");
    addRow("no light at the press", B("-7.5 ---.--"), B("1310"), set,
           "Current Optical Level:---.-- dBm at 1310 nm" + keep + "0 dBm", "-1 -7.5 -3 -4.125 -5",
           "Ref.: -7.5 dBm", "-7.5 -4.125", "-20");
    addRow("no reading yet", B(), B("850"), set,
           "Current Optical Level:0 dBm at 850 nm" + keep + "-1 dBm", "0 0 -3 -4.125 -5",
           "Ref.: 0 dBm", "0 -4.125", "-20");
    addRow("wavelength changes while open", B("-12.347"), B("1550"), set, at1310,
           "-1 0 -3 -12.347 -5", "Ref.: -12.347 dBm", "0 -12.347", "-20");
    addRow("cancel", B("-12.347"), B("1310"), int(P::Cancel), at1310, kept, "Ref.: -1 dBm",
           "0 -4.125", "-20");
    addRow("escape", B("-12.347"), B("1310"), -1, at1310, kept, "Ref.: -1 dBm", "0 -4.125", "-20");
    addRow("closed", B("-12.347"), B("1310"), -2, at1310, kept, "Ref.: -1 dBm", "0 -4.125", "-20");
}

void TestOpmSetup::referenceDialog()
{
    QFETCH(B, before);
    QFETCH(B, during);
    QFETCH(int, answer);
    QFETCH(QString, dialog);
    QFETCH(QString, references);
    QFETCH(QString, refLabel);
    QFETCH(QString, stored);
    QFETCH(QString, capture);

    PageFixture fx(kReferences);
    NerioOpm* p = fx.page;
    foreach (const QByteArray& value, before.split(' ')) {
        if (!value.isEmpty())
            fx.show("1310", value.constData());
    }
    P::click(p, P::Reference);
    QVERIFY(P::dialog(p));
    QCOMPARE(P::dialog(p)->windowModality(), Qt::ApplicationModal);
    QCOMPARE(P::dialogText(p), dialog);
    fx.show(during.constData(), "-20");
    if (answer >= 0)
        P::click(p, P::Button(answer));
    else if (answer == -1)
        P::escape(p);
    else if (answer == -2)
        P::closeDialog(p);
    fx.show(during.constData(), "-20");
    QCOMPARE(P::openDialogs(p), answer == -3 ? 1 : 0);
    QCOMPARE(P::references(p), references);
    QCOMPARE(P::refLabel(p), refLabel);
    QCOMPARE(storedValue("Reference1310") + ' ' + storedValue("Reference1550"), stored);
    QCOMPARE(fieldText(P::capture(p).value), capture);
    QCOMPARE(int(P::capture(p).flag), answer == -3 ? 1 : 0);
}

// A second press while the dialog is open leaves that one dialog, which Set then answers.
void TestOpmSetup::pressedTwice()
{
    PageFixture fx;
    NerioOpm* p = fx.page;
    P::choose(p, P::Mode, 1);
    fx.show("1310", "-12.34");
    P::click(p, P::Reference);
    fx.show("1310", "-20");
    P::click(p, P::Reference);
    QCOMPARE(P::openDialogs(p), 1);
    QCOMPARE(fieldText(P::capture(p).value), QString("-12.34"));
    P::click(p, P::Set);
    QCOMPARE(P::openDialogs(p), 0);
    QCOMPARE(P::references(p), QString("0 -12.34 0 0 0"));
    QCOMPARE(storedValue("Reference1310"), QString("-12.34"));
}

// As built: the Power Meter layout, the bar at its place and no polling. Shown, the page polls
// once a second. In either mode the bar keeps its place over the laid-out page, and
// retranslating keeps the mode, captions the limits by mode and unit and saves nothing.
void TestOpmSetup::shown()
{
    PageFixture fx;
    NerioOpm* p = fx.page;
    const QRect barPlace(205, 200, 255, 40);
    QCOMPARE(P::reading(p), QString());
    QCOMPARE(P::layout(p), QString("power"));
    QVERIFY(!P::timer(p)->isActive());
    QCOMPARE(P::bar(p)->geometry(), barPlace);
    p->resize(658, 368);
    p->show();
    QVERIFY(TestCompat::waitForShown(p));
    QCOMPARE(P::timer(p)->interval(), 1000);
    QVERIFY(P::timer(p)->isActive());
    fx.reader.setReading("1310", "dBm", "-5");
    QMetaObject::invokeMethod(P::timer(p), "timeout");
    QCOMPARE(P::reading(p), QString("-5.000 dBm"));

    P::click(p, P::MW);
    P::choose(p, P::Mode, 1);
    QVERIFY(QFile::remove(DevicePaths::settingFile()));
    p->translate();
    QCOMPARE(P::testMode(p), 1);
    QCOMPARE(P::layout(p) + ' ' + P::caption(p), QString("loss Loss Limits"));
    QCOMPARE(P::bar(p)->geometry(), barPlace);
    QCOMPARE(storedSetup(), QStringList());
    P::choose(p, P::Mode, 0);
    p->translate();
    QCOMPARE(P::layout(p) + ' ' + P::caption(p), QString("power Power Limits (mW)"));
    p->hide();
    QVERIFY(!P::timer(p)->isActive());
}

// A failed attachment leaves the page working without the record: it never reads or writes
// through the failed address, which would fault.
void TestOpmSetup::withoutRecord()
{
    PageFixture fx(QByteArray(), false);
    g_failAttach = true;
    fx.buildPage();
    g_failAttach = false;
    NerioOpm* p = fx.page;
    p->show();
    P::tick(p);
    P::click(p, P::Save);
    P::choose(p, P::Wave, 3);
    P::choose(p, P::Mode, 1);
    P::click(p, P::Reference);
    P::click(p, P::Set);
    QVERIFY(!P::timer(p)->isActive());
    QCOMPARE(P::reading(p), QString("OPM Not Connected!"));
    QCOMPARE(P::readingColour(p), QString("red"));
    QCOMPARE(fx.stored(), 0);
    QCOMPARE(fx.closer.count(), 0);
    QCOMPARE(storedValue("Wavelength") + ' ' + storedValue("TestMode"), QString("1550 LossMeter"));
}

QTEST_MAIN(TestOpmSetup)
#include "tst_opmsetup.moc"
