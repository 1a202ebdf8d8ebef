// The Setup tab. The live reading: its text, the unit button and the reading a save would store;
// colour, verdict and bar against the limits; following the reader's wavelength; hold; the
// summary line; and saving the reading from the Save button and from the reader. The setup: the
// page as built and restored from the settings file (and the texts of that file kept as
// written), the page shown and its controls, entries, the reference dialog, and a page without a
// record.
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
    return "TestMode=LossMeter\nLossUnit=km\nPowerLimit=enable\nLossLength=7\nPowerLimitMinimum="
        + B(minimum) + "\nPowerLimitMaximum=" + maximum;
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

class TestSetupTab : public QObject
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
    void restore_data()
    {
        // selected: the wavelength selector's index; target: the one the reader is told.
        addColumns<B, int, int, int, QString, QString, QString, QString>(
            "setup selected target mode limitsRow references refLabel caption");
        const QString off = "0 0 0 0 0", ref = "Ref.: 0 dBm", power = "Power Limits (dBm)";
        const QString plain = "off (-60) (10) (dB) () grey";
        addRow("no file", B(), 0, 0, 0, plain, off, ref, power);
        addRow("loss meter, km, limits on",
               B("TestMode=LossMeter\nLossUnit=km\nPowerLimit=enable\nLossLength=2.5"), 0, 0, 1,
               "on -60 10 dB/km 2.5 white", off, ref, "Loss Limits");
        addRow("1550 with its reference", B("Wavelength=1550\nReference1550=-7.5\xb5<&>x"), 3, 3, 0,
               plain, "0 0 0 -7.5\xb5<&>x 0", "Ref.: -7.5\xb5<&>x dBm", power);
        // Not a wavelength the page knows: the reader is told nothing.
        addRow("wavelength 980", B("Wavelength=980\nReference850=-1\nReference1310=\"-2\\xe9,\""),
               0, 4, 0, plain, "-1 -2\xe9, 0 0 0", ref, power);
        // Not a loss unit the page knows: no step, so the caption keeps the white it was built
        // with.
        addRow("LossUnit dB", B("LossUnit=dB"), 0, 0, 0, "off (-60) (10) (dB) () white", off, ref,
               power);
        addRow("crossed limits",
               B("UNIT=mW\nPowerLimit=enable\nPowerLimitMinimum=5\nPowerLimitMaximum=-5.25"), 0, 0,
               0, "on 5 -5.25 dB () grey", off, ref, "Power Limits (mW)");
        // Cut to its field on the page; the file keeps it until a Set rewrites it.
        addRow("reference of 10 kB", "Reference850=" + B(10240, '7'), 0, 0, 0, plain,
               "777777777777777 0 0 0 0", "Ref.: 777777777777777 dBm", power);
        const char* const lengths[] = { "abc", "0", "100000" };
        for (int i = 0; i < 3; ++i)
            addRow(QString("length ") + lengths[i],
                   "LossUnit=mi\nPowerLimit=enable\nLossLength=" + B(lengths[i]), 0, 0, 0,
                   "on -60 10 dB/mi 1 white", off, ref, power);
            // Keys differ in case: not the page's, kept in the file as they are. Qt 4's QSettings
            // matches keys in any case (it reads "Unit" as UNIT and writes UNIT into it), so there,
            // as on the set, this row does not hold.
#if QT_VERSION >= 0x050000
        addRow("keys in other case", B("wavelength=1550\nUnit=mW"), 0, 0, 0, plain, off, ref,
               power);
#endif
    }
    // Every start leaves a complete file: what was stored, the defaults for what was not, the check
    // box's state written back; and no trace of a folder or file it could not use.
    void restore()
    {
        QFETCH(B, setup);
        QFETCH(int, selected);
        QFETCH(int, target);
        QFETCH(int, mode);
        QFETCH(QString, limitsRow);
        QFETCH(QString, references);
        QFETCH(QString, refLabel);
        QFETCH(QString, caption);

        StdoutCapture trace;
        PageFixture fx(setup, false);
        // What the reader was last told, so that a step that writes nothing shows.
        fx.reader.record()->wavelenthTarget = 4;
        fx.buildPage();
        QVERIFY(!trace.take().contains("cannot"));

        NerioOpm* p = fx.page;
        QCOMPARE(P::selector(p, P::Wave)->currentIndex(), selected);
        QCOMPARE(fx.reader.record()->wavelenthTarget, target);
        QCOMPARE(P::selector(p, P::Mode)->currentIndex(), mode);
        QCOMPARE(P::layout(p), QString(mode ? "loss" : "power"));
        QCOMPARE(P::limitsRow(p), limitsRow);
        QCOMPARE(P::lossUnit(p), P::selector(p, P::LossUnit)->currentIndex());
        QCOMPARE(P::references(p), references);
        QCOMPARE(P::refLabel(p), refLabel);
        QCOMPARE(P::caption(p), caption);
        QCOMPARE(storedSetup(), setupLines(kSetupDefaults + setup));
    }
    void keptAsWritten_data()
    {
        addColumns<B, QString>("line text"); // line: the value of Reference850 in the file
        addRow("commas", B("1,5"), "1,5");
        addRow("commas, as a save quotes them", B("\"1,5\""), "1,5");
        addRow("quote, as a save escapes it", B("a\\\"b"), "a\"b");
        addRow("quote left open", B("a\"b"), "a\"b");
        addRow("semicolon", B("-1.5;x"), "-1.5;x");
        addRow("invalid value", B("@Invalid()"), "@Invalid()");
        addRow("at sign, as a save doubles it", B("@@x"), "@x");
        addRow("Latin-1 and markup", B("-1\xe9<&>"), "-1\xe9<&>");
    }
    // Stored setup texts that the settings class would read as something else: a list at a comma,
    // a comment at a semicolon, a typed value at an '@', or a text running on at an open quote.
    // Each comes back as the operator or the previous save wrote it, and the file written back
    // reads the same, for the page and for QSettings.
    void keptAsWritten()
    {
        QFETCH(B, line);
        QFETCH(QString, text);
        TestDeviceRoot root;
        QVERIFY(root.writeFile("/home/Setting/opmSetup.conf",
                               "[COpmSetup]\nReference850=" + line + "\nReference1310=-2\n"));
        COpmSetupConfig config;
        QCOMPARE(config.mreference850, text);
        QCOMPARE(config.mreference1310, QString("-2"));
        const QByteArray firstSave = root.readFile("/home/Setting/opmSetup.conf");
        // A copy, so that QSettings parses the file rather than serve what it cached on writing it.
        QVERIFY(root.writeFile("/copy.conf", firstSave));
        QSettings copy(root.file("/copy.conf"), QSettings::IniFormat);
        QCOMPARE(copy.value("COpmSetup/Reference850").toString(), text);

        COpmSetupConfig again;
        QCOMPARE(again.mreference850, text);
        QCOMPARE(root.readFile("/home/Setting/opmSetup.conf"), firstSave);
    }
    // Built, the page does not poll; shown, it polls, and hidden, it stops. Each control takes
    // effect at once and rewrites every key (the last change's file is checked whole); Hold writes
    // nothing. The reader is told the chosen wavelength, never the mode; the reference label
    // follows the choice in Loss Meter mode only. The mode sets layout and caption whatever the
    // unit; only a retranslation, which keeps the mode, captions the limits by the unit again. In
    // Loss Meter mode, dB empties and disables the length field but keeps the length; dB/km and
    // dB/mi show it again. Unchecked limits disable their fields, keep their texts and span the bar
    // over -60..10. The bar keeps its place over the laid-out page.
    void controls()
    {
        const B setup = "Wavelength=1550\nPowerLimit=enable\nPowerLimitMinimum=-40.5\n"
                        "PowerLimitMaximum=-2\nLossUnit=km\nLossLength=2.5\nReference1310=-2\xe9\n"
                        "Reference1625=-5";
        PageFixture fx(setup);
        NerioOpm* p = fx.page;
        QVERIFY(!P::timer(p)->isActive());
        p->resize(658, 368);
        p->show();
        QVERIFY(TestCompat::waitForShown(p));
        QVERIFY(P::timer(p)->isActive());
        QVERIFY(QFile::remove(DevicePaths::settingFile()));
        P::click(p, P::Hold);
        P::click(p, P::Hold);
        QCOMPARE(storedSetup(), QStringList());

        P::click(p, P::MW);
        QCOMPARE(P::caption(p), QString("Power Limits (mW)"));
        P::choose(p, P::Wave, 4);
        QCOMPARE(fx.reader.record()->wavelenthTarget, 4);
        QCOMPARE(P::refLabel(p), QString("Ref.: 0 dBm"));
        P::choose(p, P::Mode, 1);
        QCOMPARE(P::layout(p) + ' ' + P::caption(p), QString("loss Loss Limits"));
        QCOMPARE(storedValue("TestMode"), QString("LossMeter"));
        P::choose(p, P::Wave, 1);
        QCOMPARE(fx.reader.record()->wavelenthTarget, 1);
        QCOMPARE(P::refLabel(p), QString::fromLatin1("Ref.: -2\xe9 dBm"));

        P::choose(p, P::LossUnit, 0);
        QCOMPARE(P::limitsRow(p), QString("on -40.5 -2 dB () grey"));
        QCOMPARE(P::lossUnit(p), 0);
        QCOMPARE(storedValue("LossUnit"), QString("db"));
        P::choose(p, P::LossUnit, 2);
        QCOMPARE(P::limitsRow(p), QString("on -40.5 -2 dB/mi 2.5 white"));
        QCOMPARE(storedValue("LossUnit"), QString("mi"));
        P::choose(p, P::LossUnit, 1);
        P::click(p, P::Limits);
        QCOMPARE(P::limitsRow(p), QString("off (-40.5) (-2) (dB/km) (2.5) white"));
        QCOMPARE(P::barRange(p), QString("-60.00..10.00"));

        p->translate();
        QCOMPARE(P::selector(p, P::Mode)->currentIndex(), 1);
        QCOMPARE(P::caption(p), QString("Loss Limits"));
        P::choose(p, P::Mode, 0);
        QCOMPARE(P::layout(p) + ' ' + P::caption(p), QString("power Power Limits (dBm)"));
        p->translate();
        QCOMPARE(P::caption(p), QString("Power Limits (mW)"));
        QCOMPARE(fx.reader.record()->wavelenthTarget, 1);
        QCOMPARE(
            storedSetup(),
            setupLines(kSetupDefaults + setup + "\nUNIT=mW\nWavelength=1310\nPowerLimit=disable"));
        QCOMPARE(P::bar(p)->geometry(), QRect(205, 200, 255, 40));
        p->hide();
        QVERIFY(!P::timer(p)->isActive());
    }
    // An entry into a limit or the length of a Loss Meter page in dB/km, limits on, length 7: a
    // refused one is put back in its field and boxed; the bar follows the limits.
    void entries_data()
    {
        // stored: the value the page keeps, which a refused entry puts back in its field; box: none
        // when empty.
        addColumns<B, int, QString, QString, QString, QString>(
            "setup field entry stored box barRange");
        const QString limitsBox =
            "Error: Minimum must be less or equal to Maximum! Please input again.";
        const QString lengthBox =
            "Error: The length must be greater than zero! Please input again.";
        const B wide = lossPage("-60", "10");
        const QString range = "-60.00..10.00";
        addRow("max above range", wide, int(P::Max), "12", "10", limitsBox, range);
        addRow("min below range", wide, int(P::Min), "-61", "-60", limitsBox, range);
        addRow("min above max", lossPage("-60", "-10"), int(P::Min), "-5", "-60", limitsBox,
               "-60.00..-10.00");
        addRow("max below min", lossPage("-20", "-10"), int(P::Max), "-30", "-10", limitsBox,
               "-20.00..-10.00");
        addRow("min nan", wide, int(P::Min), "nan", "-60", limitsBox, range);
        addRow("min equal to max", lossPage("-60", "-10.25"), int(P::Min), "-10.25", "-10.25", "",
               "-10.25..-10.25");
        addRow("max at top", lossPage("-60", "0"), int(P::Max), "10", "10", "", range);
        addRow("min with decimals", wide, int(P::Min), "-12.347", "-12.347", "", "-12.35..10.00");
        addRow("length zero", wide, int(P::Length), "0", "1", lengthBox, range);
        addRow("length above range", wide, int(P::Length), "100000", "1", lengthBox, range);
        addRow("length nan", wide, int(P::Length), "nan", "1", lengthBox, range);
        addRow("length at top", wide, int(P::Length), "99999", "99999", "", range);
        // An accepted entry stays as typed.
        addRow("length trailing zero", wide, int(P::Length), "2.50", "2.5", "", range);
    }
    void entries()
    {
        QFETCH(B, setup);
        QFETCH(int, field);
        QFETCH(QString, entry);
        QFETCH(QString, stored);
        QFETCH(QString, box);
        QFETCH(QString, barRange);

        PageFixture fx(setup);
        P::enter(fx.page, P::Field(field), entry);
        const char* const keys[] = { "PowerLimitMinimum", "PowerLimitMaximum", "LossLength" };
        QCOMPARE(P::field(fx.page, P::Field(field))->text(), box.isEmpty() ? entry : stored);
        QCOMPARE(storedValue(keys[field]), stored);
        QCOMPARE(fx.closer.boxes().join(""), box);
        QCOMPARE(P::barRange(fx.page), barRange);
    }
    // The modal dialog names the reading captured at the press and the stored reference. Set stores
    // the captured reading for the wavelength reported at Set; however the dialog goes without Set,
    // nothing is stored and the capture follows the reading again. A second press while it is open
    // leaves that one dialog, which Set then answers.
    void referenceDialog_data()
    {
        // before: the values shown at 1310 nm before the press; during: the wavelength shown while
        // open (-20 dBm); answer: set, cancel, escape, twice (Reference again, then Set) or open;
        // dialog: what it said; references: the page's and the file's; capture: what a press would
        // take.
        addColumns<B, B, QString, QString, QString, QString, QString>(
            "before during answer dialog references refLabel capture");
        const QString keep =
            "\nOr press Cancel instead if you prefer to keep the previously stored value of ";
        const QString at1310 = "Current Optical Level:-12.347 dBm at 1310 nm" + keep + "0 dBm";
        const QString kept = "-1 0 -3 -4.125 -5", set = "-1 -12.347 -3 -4.125 -5";
        addRow("open", B("-12.347"), B("1310"), "open", at1310, kept, "Ref.: -1 dBm", "-12.347");
        addRow("set", B("-12.347"), B("1310"), "set", at1310, set, "Ref.: -12.347 dBm", "-20");
        addRow("no light at the press", B("-7.5 ---.--"), B("1310"), "set",
               "Current Optical Level:---.-- dBm at 1310 nm" + keep + "0 dBm",
               "-1 -7.5 -3 -4.125 -5", "Ref.: -7.5 dBm", "-20");
        addRow("no reading yet", B(), B("850"), "set",
               "Current Optical Level:0 dBm at 850 nm" + keep + "-1 dBm", "0 0 -3 -4.125 -5",
               "Ref.: 0 dBm", "-20");
        addRow("wavelength changes while open", B("-12.347"), B("1550"), "set", at1310,
               "-1 0 -3 -12.347 -5", "Ref.: -12.347 dBm", "-20");
        addRow("cancel", B("-12.347"), B("1310"), "cancel", at1310, kept, "Ref.: -1 dBm", "-20");
        addRow("escape", B("-12.347"), B("1310"), "escape", at1310, kept, "Ref.: -1 dBm", "-20");
        addRow("pressed twice", B("-12.347"), B("1310"), "twice", at1310, set, "Ref.: -12.347 dBm",
               "-20");
    }
    void referenceDialog()
    {
        QFETCH(B, before);
        QFETCH(B, during);
        QFETCH(QString, answer);
        QFETCH(QString, dialog);
        QFETCH(QString, references);
        QFETCH(QString, refLabel);
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
        if (answer == "twice")
            P::click(p, P::Reference);
        if (answer == "set" || answer == "twice")
            P::click(p, P::Set);
        else if (answer == "cancel")
            P::click(p, P::Cancel);
        else if (answer == "escape")
            P::escape(p);
        fx.show(during.constData(), "-20");
        const int open = answer == "open";
        QCOMPARE(P::openDialogs(p), open);
        QCOMPARE(P::references(p), references);
        QStringList file;
        for (const char* wave : { "850", "1310", "1490", "1550", "1625" })
            file << storedValue(QString("Reference") + wave);
        QCOMPARE(file.join(" "), references);
        QCOMPARE(P::refLabel(p), refLabel);
        QCOMPARE(fieldText(P::capture(p).value), capture);
        QCOMPARE(int(P::capture(p).flag), open);
    }
    // A failed attachment leaves the page working without the record: it never reads or writes
    // through the failed address, which would fault.
    void withoutRecord()
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
        QVERIFY(!P::timer(p)->isActive());
        QCOMPARE(P::reading(p), QString("OPM Not Connected!"));
        QCOMPARE(fx.stored(), 0);
        QCOMPARE(fx.closer.count(), 0);
        QCOMPARE(storedValue("Wavelength"), QString("1550"));
    }
};

QTEST_MAIN(TestSetupTab)
#include "tst_setuptab.moc"
