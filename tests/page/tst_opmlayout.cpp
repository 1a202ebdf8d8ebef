// The Setup tab as built: defaults, the bar's place, retranslation, the poll timer's life, a
// page without a record, and the screenshots of the docs.
#include "opmPageProbe.h"

#include <QDir>

#include <cerrno>
#include <dlfcn.h>
#include <sys/shm.h>

using P = OpmPageProbe;

namespace {
bool g_failAttach = false;
}

// Lets a test make the page's attachment fail as the system would.
extern "C" void* shmat(int shmid, const void* shmaddr, int shmflg) __THROW
{
    if (g_failAttach) {
        errno = ENOMEM;
        return reinterpret_cast<void*>(-1);
    }
    using Attach = void* (*)(int, const void*, int);
    static const Attach real = reinterpret_cast<Attach>(dlsym(RTLD_NEXT, "shmat"));
    return real(shmid, shmaddr, shmflg);
}


class TestOpmLayout : public QObject
{
    Q_OBJECT
private slots:
    void shown();
    void withoutRecord();
    void screenshots();
};

// As built: the limits -60 and 10, no length, no reading, the Power Meter layout, the bar at its
// place and no polling. Shown, the page polls once a second. In either mode the bar keeps its
// place over the laid-out page, and retranslating keeps the mode, captions the limits by mode and
// unit and saves nothing.
void TestOpmLayout::shown()
{
    PageFixture fx;
    NerioOpm* page = fx.get();
    fx.verify({ { "min", "-60 -60" }, { "max", "10 10" }, { "length", "1 ''" }, { "label", "" },
                { "layout", "power" }, { "timer", "off" }, { "barPlace", "205,200 255x40" } });
    page->resize(658, 368);
    page->show();
    QVERIFY(TestCompat::waitForShown(page));
    fx.reader.setReading("1310", "dBm", "-5");
    QMetaObject::invokeMethod(P::m_pTimer(page), "timeout");
    fx.verify({ { "timer", "1000" }, { "label", "-5.000 dBm" } });

    fx.act("click mW");
    for (int mode : { 1, 0 }) {
        fx.act(QString::fromLatin1("choose mode %1").arg(mode));
        QCoreApplication::processEvents();
        QVERIFY(QFile::remove(DevicePaths::settingFile()));
        page->translate();
        fx.verify({ { "mode", QString::fromLatin1("%1/%1").arg(mode) }, { "layout", mode ? "loss" : "power" },
                    { "barPlace", "205,200 255x40" },
                    { "modeText", mode ? "Loss Meter" : "Power Meter(OPM)" },
                    { "caption", mode ? "Loss Limits" : "Power Limits (mW)" } });
        QVERIFY(!QFile::exists(DevicePaths::settingFile()));
    }
    page->hide();
    fx.verify({ { "timer", "off" } });
}

// A failed attachment leaves the page working without the record: it never reads or writes
// through the failed address, which would fault.
void TestOpmLayout::withoutRecord()
{
    PageFixture fx(Keys(), false);
    g_failAttach = true;
    fx.buildPage();
    g_failAttach = false;
    fx.get()->show();
    fx.act("tick; click save; choose wave 3; choose mode 1; click reference; click set");
    fx.verify({ { "timer", "off" }, { "label", "OPM Not Connected!" }, { "colour", "red" },
                { "stored", "0" }, { "boxes", "0" }, { "file:Wavelength", "1550" },
                { "file:TestMode", "LossMeter" } });
}

// Written only when OPM_WRITE_DOCS names the docs folder, for a person to look at.
void TestOpmLayout::screenshots()
{
    const QString docs = QString::fromLocal8Bit(qgetenv("OPM_WRITE_DOCS"));
    if (docs.isEmpty())
        OPM_SKIP("OPM_WRITE_DOCS is not set");

    // No box closer here: it would close the reference dialog before its picture is taken.
    TestDeviceRoot root;
    QVERIFY(root.installReaderStandIn());
    RecordWriter reader;
    CBrovaOpmDataEngine::getSingleInstance()->clearAllresultItem();
    root.writeFile("/home/Setting/opmSetup.conf",
                   setupText({ { "PowerLimit", "enable" }, { "PowerLimitMinimum", "-20" },
                               { "PowerLimitMaximum", "-5" }, { "Reference1310", "-2.9" } }));
    COpmMainPage main;
    main.setGeometry(141, 61, 658, 398);
    main.show();
    QVERIFY(TestCompat::waitForShown(&main));
    NerioOpm* page = main.findChild<NerioOpm*>();
    QVERIFY(page);

    auto shoot = [&](const QString& name, QWidget* widget) {
        QCoreApplication::processEvents();
        QVERIFY(widget && TestCompat::grab(widget).save(QDir(docs).filePath(name)));
    };

    P::act(page, reader, "show 1310 -12.34; click save; tick");
    shoot("setup-power-meter.png", &main);
    P::act(page, reader, "choose mode 1; show 1310 -3.05; click reference");
    shoot("setup-reference-dialog.png", P::m_pReferenceDialog(page));
    P::act(page, reader, "click set");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    P::act(page, reader, "choose lossUnit 1; enter length 2.5; show 1310 -14.52");
    shoot("setup-loss-meter.png", &main);
}

QTEST_MAIN(TestOpmLayout)
#include "tst_opmlayout.moc"
