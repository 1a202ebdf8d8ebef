// The Setup tab's setup: the page as built and restored from the settings file (and the texts of
// that file kept as written), the operator's controls and entries, the reference dialog, and a
// page without a record.
#include "opmPageProbe.h"

#include <QSettings>

#include <cerrno>

#include <dlfcn.h>
#include <sys/shm.h>

using P = OpmPageProbe;

namespace {

bool g_failAttach = false;

// Loss Meter with a reference of its own at every wavelength but 1310 nm.
const char kReferences[] = "TestMode=LossMeter; Reference850=-1; Reference1310=0; Reference1490=-3;"
                           "Reference1550=-4; Reference1625=-5";

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
    void scenario_data();
    void scenario();
    void shown();
    void withoutRecord();
};

void TestOpmSetup::restore_data()
{
    QTest::addColumn<QString>("settings"); // none: no file
    QTest::addColumn<QString>("state"); // where it differs from the defaults

    const QString on = "limits=111; enabled=1111; ";
    QTest::newRow("no file") << ""
                             << "";
    QTest::newRow("loss meter, km, limits on")
        << "TestMode=LossMeter; LossUnit=km; PowerLimit=enable; LossLength=2.5"
        << on + "mode=1/1; layout=loss; caption=Loss Limits; lossUnit=1/1 white; length=2.5/2.5";
    QTest::newRow("1550 with its reference")
        << "Wavelength=1550; Reference1550=-7.5"
        << "wave=3/0; target=3; refs=0 0 0 -7.5 0; refLabel=Ref.: -7.5 dBm";
    QTest::newRow("wavelength 980") << "Wavelength=980; Reference850=-1"
                                    << "target=4; refs=-1 0 0 0 0";
    QTest::newRow("mW") << "UNIT=mW"
                        << "unit=1; limitsUnit=mW; caption=Power Limits (mW)";
    // Not a loss unit the page knows: no step, so the caption keeps the white it was built with.
    QTest::newRow("LossUnit dB") << "LossUnit=dB"
                                 << "lossUnit=0/0 white";
    QTest::newRow("crossed limits")
        << "PowerLimit=enable; PowerLimitMinimum=5; PowerLimitMaximum=-5"
        << on + "enabled=1110; min=5/5; max=-5/-5; bar=" + barFor(5, -5, 0);
    // Cut to its field on the page; the file keeps it until a Set rewrites it.
    QTest::newRow("reference of 10 kB")
        << "Reference850=" + QString(10240, '7')
        << "refs=777777777777777 0 0 0 0; refLabel=Ref.: 777777777777777 dBm";
    // Keys differ in case: not the page's, kept in the file as they are. Qt 4's QSettings
    // matches keys in any case (it reads "Unit" as UNIT and writes UNIT into it), so there, as on
    // the set, this row does not hold.
#if QT_VERSION >= 0x050000
    QTest::newRow("keys in other case") << "wavelength=1550; Unit=mW"
                                        << "file=15";
#endif
    const char* const lengths[] = { "abc", "0", "100000" };
    for (int i = 0; i < 3; ++i)
        QTest::newRow(qPrintable(QString("length ") + lengths[i]))
            << "LossUnit=mi; PowerLimit=enable; LossLength=" + QString(lengths[i])
            << on + "lossUnit=2/2 white; length=1/1";
}

// Every start leaves a complete file: what was stored, the defaults for what was not, the check
// box's state written back; and no trace of a folder or file it could not use.
void TestOpmSetup::restore()
{
    QFETCH(QString, settings);
    QFETCH(QString, state);

    StdoutCapture trace;
    PageFixture fx(facts(settings), false);
    // What the reader was last told, so that a step that writes nothing shows.
    fx.reader.record()->wavelenthTarget = 4;
    fx.buildPage();
    QVERIFY(!trace.take().contains("cannot"));

    // The state after a start from no file, the file with every key: the stored ones and the
    // defaults for the others; then what the row changes.
    QString expected =
        "wave=0/0; target=0; refs=0 0 0 0 0; refLabel=Ref.: 0 dBm; mode=0/0; layout=power; unit=0;"
        "limitsUnit=dB; caption=Power Limits (dBm); lossUnit=0/0 grey; limits=000; enabled=0000;"
        "min=-60/-60; max=10/10; length=1/; file=13; bar="
        + barFor(-60, 10, 0);
    const Keys file = facts(kSetupDefaults + (';' + settings));
    for (Keys::const_iterator it = file.constBegin(); it != file.constEnd(); ++it)
        expected += "; file:" + it.key() + '=' + it.value();
    fx.verify(facts(expected + ';' + state));
}

void TestOpmSetup::keptAsWritten_data()
{
    QTest::addColumn<QByteArray>("line"); // the value of Reference850 in the file
    QTest::addColumn<QString>("text");
    QTest::newRow("commas") << QByteArray("1,5") << "1,5";
    QTest::newRow("commas and blanks") << QByteArray("1, 5") << "1, 5";
    QTest::newRow("commas, as a save quotes them") << QByteArray("\"1,5\"") << "1,5";
    QTest::newRow("quote, as a save escapes it") << QByteArray("a\\\"b") << "a\"b";
    QTest::newRow("quote left open") << QByteArray("a\"b") << "a\"b";
    QTest::newRow("quoted word") << QByteArray("a \"b\" c") << "a \"b\" c";
    QTest::newRow("semicolon") << QByteArray("-1.5;x") << "-1.5;x";
    QTest::newRow("typed value") << QByteArray("@Rect(1 2 3 4)") << "@Rect(1 2 3 4)";
    QTest::newRow("invalid value") << QByteArray("@Invalid()") << "@Invalid()";
    QTest::newRow("byte array") << QByteArray("@ByteArray(-3)") << "@ByteArray(-3)";
    QTest::newRow("at sign, as a save doubles it") << QByteArray("@@x") << "@x";
    QTest::newRow("at sign") << QByteArray("@x") << "@x";
}

// Stored setup texts that the settings class would read as something else: a list at a comma,
// a comment at a semicolon, a typed value at an '@', or a text running on at an open quote.
// Each comes back as the operator or the previous save wrote it, and the file written back
// reads the same, for the page and for QSettings.
void TestOpmSetup::keptAsWritten()
{
    QFETCH(QByteArray, line);
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

// Every setting changed through the controls comes back on a new page on the same folder.
void TestOpmSetup::roundTrip()
{
    PageFixture fx;
    fx.act("click uW; choose mode 1; click limits; enter min -30; enter max -5; choose lossUnit 2;"
           "enter length 3.5; choose wave 2; show 1490 -11; click reference; click set; show 1490 "
           "-18");
    Keys before = fx.state();
    // Only a start takes the saved unit from the stored one; in Loss Meter mode no tick sets it.
    before["limitsUnit"] = "uW";

    fx.reader.record()->wavelenthTarget = 0;
    fx.buildPage();
    // Once the reader has reported its wavelength it measures as before: (-11 - -18) / 3.5 mi.
    fx.act("tick; tick");
    QCOMPARE(fx.state().value("label"), QString("2.000000 dB/mi"));
    fx.verify(before);
}

void TestOpmSetup::scenario_data()
{
    addScenarioColumns();
    // dB empties and disables the length field but keeps the length; dB/km shows it again.
    const QString lossKm = "TestMode=LossMeter; LossUnit=km; PowerLimit=enable; LossLength=2.5";
    QTest::newRow("loss unit dB")
        << lossKm << "choose lossUnit 0"
        << "lossUnit=0/0 grey; enabled=1110; length=2.5/; file:LossUnit=db";
    QTest::newRow("loss unit dB/km again")
        << lossKm << "choose lossUnit 0; choose lossUnit 1"
        << "lossUnit=1/1 white; enabled=1111; length=2.5/2.5; file:LossUnit=km";
    // The mode sets layout and caption whatever the unit; the reader is never told of it.
    QTest::newRow("mW") << "Wavelength=1625"
                        << "click mW"
                        << "unit=1; caption=Power Limits (mW); file:UNIT=mW";
    QTest::newRow("Loss Meter")
        << "Wavelength=1625"
        << "click mW; choose mode 1"
        << "mode=1/1; layout=loss; caption=Loss Limits; target=4; file:TestMode=LossMeter";
    QTest::newRow("Power Meter again")
        << "Wavelength=1625"
        << "click mW; choose mode 1; choose mode 0"
        << "mode=0/0; layout=power; caption=Power Limits (dBm); unit=1; target=4; file:UNIT=mW";
    // The reader is told the choice at once; the reference label follows in Loss Meter mode only.
    const QString refs = "Reference850=-1; Reference1310=-3; Reference1550=-7.5";
    QTest::newRow("wavelength, Power Meter")
        << refs << "choose wave 3"
        << "target=3; refLabel=Ref.: -1 dBm; wave=3/0; file:Wavelength=1550";
    QTest::newRow("wavelength, Loss Meter")
        << refs << "choose mode 1; choose wave 1"
        << "target=1; refLabel=Ref.: -3 dBm; wave=1/0; file:Wavelength=1310";
    // Unchecked limits disable their fields, keep their texts and span the bar over -60..10.
    QTest::newRow("limits off") << lossKm + "; PowerLimitMinimum=-20; PowerLimitMaximum=-10"
                                << "click limits"
                                << "limits=000; enabled=0000; min=-20/-20; max=-10/-10; "
                                   "length=2.5/2.5; file:PowerLimit=disable;"
                                   "bar="
            + barFor(-60, 10, 0);
    QTest::newRow("hold twice writes nothing") << ""
                                               << "click hold; click hold"
                                               << "";
    const QString every =
        "Wavelength=1310; TestMode=PowerMeter; UNIT=mW; PowerLimit=enable; PowerLimitMinimum=-40;"
        "PowerLimitMaximum=-2; LossUnit=mi; LossLength=3.5; Reference850=-1; Reference1310=-2;"
        "Reference1490=-3; Reference1550=-4; Reference1625=-5";
    // Every key expected in the file: "file:" before each.
    // Every key expected in the file: "file:" before each.
    QTest::newRow("one change rewrites every key")
        << every << "click uW"
        << QString(every + "; UNIT=uW").replace(QRegExp("(^|; *)(\\w)"), "\\1file:\\2");

    // The modal dialog names the reading captured at the press and the stored reference.
    QTest::newRow("dialog")
        << kReferences << "show 1310 -12.34; click reference; show 1310 -20"
        << "dialog=modal; dialogLines=Current Optical Level:-12.34 dBm at 1310 nm|Or press Cancel "
           "instead if you "
           "prefer to keep the previously stored value of 0 dBm; capture=-12.34/1";
    QTest::newRow("dialog without light")
        << kReferences << "show 1550 -7; show 1550 ---.--; click reference"
        << "dialogLines=Current Optical Level:---.-- dBm at 1550 nm|Or press Cancel instead if you "
           "prefer to keep "
           "the previously stored value of -4 dBm";
    // A second press while the dialog is open leaves that one dialog, which Set then answers.
    const QString twice =
        "choose mode 1; show 1310 -12.34; click reference; show 1310 -20; click reference";
    QTest::newRow("pressed twice")
        << "" << twice << "dialogs=1; dialog=modal; capture=-12.34/1; file:TestMode=LossMeter";
    QTest::newRow("pressed twice, Set")
        << "" << twice + "; click set"
        << "dialogs=0; refs=0 -12.34 0 0 0; capture=-12.34/0; file:Reference1310=-12.34";
    // Set stores the reading captured at the press for the wavelength reported at Set; however
    // the dialog goes without Set, nothing is stored and the capture follows the reading again.
    QTest::newRow("set")
        << kReferences << "show 1310 -12.34; click reference; click set"
        << "refs=-1 -12.34 -3 -4 -5; refLabel=Ref.: -12.34 dBm; capture=-12.34/0; dialog=none;"
           "file:Reference1310=-12.34; file:Reference850=-1";
    QTest::newRow("no light at the press")
        << kReferences << "show 1310 -7; show 1310 ---.--; click reference; click set"
        << "refs=-1 -7 -3 -4 -5; refLabel=Ref.: -7 dBm; file:Reference1310=-7";
    QTest::newRow("no reading yet")
        << kReferences << "click reference; click set"
        << "refs=0 0 -3 -4 -5; refLabel=Ref.: 0 dBm; file:Reference850=0";
    QTest::newRow("wavelength changes while open")
        << kReferences << "show 1310 -12.34; click reference; show 1550 -20; click set"
        << "refs=-1 0 -3 -12.34 -5; refLabel=Ref.: -12.34 dBm; file:Reference1550=-12.34; "
           "file:Reference1310=0";
    // An entry into a limit or the length of a Loss Meter page in dB/km, limits on, length 7: a
    // refused one is put back in its field and boxed; the bar follows the limits.
    const QString page =
        "TestMode=LossMeter; LossUnit=km; PowerLimit=enable; LossLength=7; PowerLimitMinimum=%1;"
        "PowerLimitMaximum=%2";
    const QString limitsBox =
        "; boxes=1; box=Error: Minimum must be less or equal to Maximum! Please input again.";
    const QString lengthBox =
        "; boxes=1; box=Error: The length must be greater than zero! Please input again.";
    QTest::newRow("max above range") << page.arg(-60).arg(10) << "enter max 12"
                                     << "max=10/10; file:PowerLimitMaximum=10" + limitsBox;
    QTest::newRow("min below range") << page.arg(-60).arg(10) << "enter min -61"
                                     << "min=-60/-60; file:PowerLimitMinimum=-60" + limitsBox;
    QTest::newRow("min above max") << page.arg(-60).arg(-10) << "enter min -5"
                                   << "min=-60/-60; file:PowerLimitMinimum=-60" + limitsBox;
    QTest::newRow("max below min") << page.arg(-20).arg(-10) << "enter max -30"
                                   << "max=-10/-10; file:PowerLimitMaximum=-10" + limitsBox;
    QTest::newRow("min nan") << page.arg(-60).arg(10) << "enter min nan"
                             << "min=-60/-60; file:PowerLimitMinimum=-60" + limitsBox;
    QTest::newRow("min equal to max")
        << page.arg(-60).arg(-10) << "enter min -10"
        << "min=-10/-10; boxes=0; file:PowerLimitMinimum=-10; bar=" + barFor(-10, -10, 0);
    QTest::newRow("max at top") << page.arg(-60).arg(0) << "enter max 10"
                                << "max=10/10; boxes=0; file:PowerLimitMaximum=10";
    QTest::newRow("min with decimals")
        << page.arg(-60).arg(10) << "enter min -12.50"
        << "min=-12.5/-12.50; boxes=0; file:PowerLimitMinimum=-12.5; bar=" + barFor(-12.5, 10, 0);
    QTest::newRow("length zero") << page.arg(-60).arg(10) << "enter length 0"
                                 << "length=1/1; file:LossLength=1" + lengthBox;
    QTest::newRow("length above range") << page.arg(-60).arg(10) << "enter length 100000"
                                        << "length=1/1; file:LossLength=1" + lengthBox;
    QTest::newRow("length nan") << page.arg(-60).arg(10) << "enter length nan"
                                << "length=1/1; file:LossLength=1" + lengthBox;
    QTest::newRow("length at top") << page.arg(-60).arg(10) << "enter length 99999"
                                   << "length=99999/99999; boxes=0; file:LossLength=99999";
    QTest::newRow("length trailing zero") << page.arg(-60).arg(10) << "enter length 2.50"
                                          << "length=2.5/2.50; boxes=0; file:LossLength=2.5";

    const char* const ways[] = { "click cancel", "escape", "close" };
    for (int i = 0; i < 3; ++i)
        QTest::newRow(ways[i])
            << kReferences
            << QString("show 1550 -12.34; click reference; %1; show 1550 -9").arg(ways[i])
            << "refs=-1 0 -3 -4 -5; refLabel=Ref.: -1 dBm; capture=-9/0; dialog=none";
}

void TestOpmSetup::scenario() { runScenario(); }

// As built: the Power Meter layout, the bar at its place and no polling. Shown, the page polls
// once a second. In either mode the bar keeps its place over the laid-out page, and
// retranslating keeps the mode, captions the limits by mode and unit and saves nothing.
void TestOpmSetup::shown()
{
    PageFixture fx;
    NerioOpm* page = fx.page;
    fx.verify(facts("label=; layout=power; timer=off; barPlace=205,200 255x40"));
    page->resize(658, 368);
    page->show();
    QVERIFY(TestCompat::waitForShown(page));
    fx.reader.setReading("1310", "dBm", "-5");
    QMetaObject::invokeMethod(P::m_pTimer(page), "timeout");
    fx.verify(facts("timer=1000; label=-5.000 dBm"));

    fx.act("click mW");
    fx.act("choose mode 1");
    QVERIFY(QFile::remove(DevicePaths::settingFile()));
    page->translate();
    fx.verify(facts("mode=1/1; barPlace=205,200 255x40; file=0; layout=loss; caption=Loss Limits"));
    fx.act("choose mode 0");
    page->translate();
    fx.verify(facts("layout=power; caption=Power Limits (mW)"));
    page->hide();
    fx.verify(facts("timer=off"));
}

// A failed attachment leaves the page working without the record: it never reads or writes
// through the failed address, which would fault.
void TestOpmSetup::withoutRecord()
{
    PageFixture fx(Keys(), false);
    g_failAttach = true;
    fx.buildPage();
    g_failAttach = false;
    fx.page->show();
    fx.act("tick; click save; choose wave 3; choose mode 1; click reference; click set");
    fx.verify(facts(
        "timer=off; label=OPM Not Connected!; colour=red; stored=0; boxes=0; file:Wavelength=1550;"
        "file:TestMode=LossMeter"));
}

QTEST_MAIN(TestOpmSetup)
#include "tst_opmsetup.moc"
