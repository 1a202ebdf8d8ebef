// The Setup tab as built: defaults, the bar's place, retranslation, the poll timer's life, a
// page without a record, and the screenshots of the docs.
#include "opmPageProbe.h"

#include <QDir>
#include <QPainter>
#include <QPointer>
#include <QtTest>

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

namespace {

const QRect kBarArea(205, 200, 255, 40);

// Every control the operator can see lies inside the page.
void verifyInside(NerioOpm* page)
{
    const QList<QWidget*> children = page->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget* w : children) {
        if (w->isHidden() || w->isWindow())
            continue;
        QVERIFY2(page->rect().contains(w->geometry()),
                 qPrintable(QStringLiteral("%1 at %2,%3 %4x%5 outside %6x%7")
                                    .arg(w->metaObject()->className())
                                    .arg(w->x()).arg(w->y()).arg(w->width()).arg(w->height())
                                    .arg(page->width()).arg(page->height())));
    }
}

} // namespace

class TestOpmLayout : public QObject
{
    Q_OBJECT
private slots:
    void defaults();
    void barArea();
    void translate_data();
    void translate();
    void codeChangesRunNoSlot();
    void timerFollowsVisibility();
    void withoutRecord();
    void screenshots();
};

void TestOpmLayout::defaults()
{
    PageFixture fx;
    NerioOpm* page = fx.get();
    QCOMPARE(P::m_pMinimum(page)->text(), QString("-60"));
    QCOMPARE(P::m_pMaximum(page)->text(), QString("10"));
    QCOMPARE(P::m_pLossLength(page)->text(), QString());
    QVERIFY(P::m_pReference(page)->isHidden());
    QCOMPARE(P::m_pOpmRefLabel(page)->text(), QString("Ref.: 0 dBm"));
    QCOMPARE(P::m_pOpmCurValue(page)->text(), QString());
    QCOMPARE(P::m_pOffsetBarResult(page)->geometry(), kBarArea);
}

void TestOpmLayout::barArea()
{
    PageFixture fx;
    NerioOpm* page = fx.get();
    page->resize(658, 368);
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page));
    OffsetBar* bar = P::m_pOffsetBarResult(page);
    QCOMPARE(bar->geometry(), kBarArea);
    QVERIFY(bar->isVisible());
    verifyInside(page);

    P::choose(P::m_pTestMode(page), 1);
    QCoreApplication::processEvents();
    QCOMPARE(bar->geometry(), kBarArea);
    QVERIFY(bar->isVisible());
    verifyInside(page);
}

void TestOpmLayout::translate_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("unitButton");
    QTest::addColumn<QString>("caption");

    QTest::newRow("loss meter after mW") << 1 << int(mW) << "Loss Limits";
    QTest::newRow("power meter, mW") << 0 << int(mW) << "Power Limits (mW)";
    QTest::newRow("power meter, uW") << 0 << int(uW) << "Power Limits (uW)";
}

void TestOpmLayout::translate()
{
    QFETCH(int, mode);
    QFETCH(int, unitButton);
    QFETCH(QString, caption);

    PageFixture fx;
    NerioOpm* page = fx.get();
    CPushButton* units[] = { P::m_pdBm(page), P::m_pmW(page), P::m_puW(page) };
    units[unitButton]->click();
    P::choose(P::m_pTestMode(page), mode);
    QVERIFY(QFile::remove(DevicePaths::settingFile()));

    page->translate();
    QCOMPARE(P::m_pTestMode(page)->currentIndex(), mode);
    QCOMPARE(P::m_pTestMode(page)->currentText(), QString(mode ? "Loss Meter" : "Power Meter(OPM)"));
    QCOMPARE(int(P::m_eTestMode(page)), mode);
    QCOMPARE(P::m_pLimits(page)->text(), caption);
    QVERIFY(!QFile::exists(DevicePaths::settingFile()));
}

void TestOpmLayout::codeChangesRunNoSlot()
{
    ModalBoxCloser closer;
    PageFixture fx;
    NerioOpm* page = fx.get();
    QVERIFY(QFile::remove(DevicePaths::settingFile()));

    P::m_pTestMode(page)->setCurrentIndex(1);
    P::m_pWaveLength(page)->setCurrentIndex(3);
    P::m_pLossMeterUnit(page)->setCurrentIndex(1);
    P::m_pMinimum(page)->setText("-70");
    P::m_pLossLength(page)->setText("0");
    QCOMPARE(P::m_eTestMode(page), PowerMeter);
    QCOMPARE(fx.record()->wavelenthTarget, 0);
    QCOMPARE(P::m_eLossLengthType(page), LossLim_dB);
    QCOMPARE(P::m_fPowerMin(page), -60.0f);
    QCOMPARE(P::m_fLength(page), 1.0f);
    QCOMPARE(closer.count(), 0);
    QVERIFY(!QFile::exists(DevicePaths::settingFile()));

    P::choose(P::m_pTestMode(page), 1);
    QCOMPARE(P::m_eTestMode(page), LossMeter);
    QCOMPARE(storedSetup().value("TestMode"), QString("LossMeter"));
}

void TestOpmLayout::timerFollowsVisibility()
{
    PageFixture fx;
    NerioOpm* page = fx.get();
    QTimer* timer = P::m_pTimer(page);
    QVERIFY(!timer->isActive());

    page->show();
    QVERIFY(timer->isActive());
    QCOMPARE(timer->interval(), 1000);
    fx.reader.setReading("1310", "dBm", "-5");
    QTRY_COMPARE_WITH_TIMEOUT(P::m_pOpmCurValue(page)->text(), QString("-5.000 dBm"), 5000);

    page->hide();
    QVERIFY(!timer->isActive());
    page->show();
    QVERIFY(timer->isActive());
}

// A failed attachment leaves the page working without the record: it never reads or writes
// through the failed address, which would fault.
void TestOpmLayout::withoutRecord()
{
    ModalBoxCloser closer;
    PageFixture fx(QByteArray(), false);
    g_failAttach = true;
    fx.buildPage();
    g_failAttach = false;
    NerioOpm* page = fx.get();
    QCOMPARE(P::m_addr(page), reinterpret_cast<OpmShareRecord*>(-1));
    QCOMPARE(P::m_pOpmCurValue(page)->text(), QString("OPM Not Connected!"));
    QCOMPARE(P::m_pOpmCurValue(page)->textColor(), QColor(Qt::red));

    page->show();
    QVERIFY(!P::m_pTimer(page)->isActive());
    P::tick(page);
    QCOMPARE(P::m_pOpmCurValue(page)->text(), QString("OPM Not Connected!"));
    P::m_pSave(page)->click();
    QCOMPARE(CBrovaOpmDataEngine::getSingleInstance()->getResultItemCount(), 0);
    P::choose(P::m_pWaveLength(page), 3);
    P::choose(P::m_pTestMode(page), 1);
    P::m_pReference(page)->click();
    P::m_pReferenceSet(page)->click();
    QCOMPARE(closer.count(), 0);
    const QMap<QString, QString> file = storedSetup();
    QCOMPARE(file.value("Wavelength"), QString("1550"));
    QCOMPARE(file.value("TestMode"), QString("LossMeter"));
    page->hide();
}

// Written only when OPM_WRITE_DOCS names the docs folder, for a person to look at.
void TestOpmLayout::screenshots()
{
    const QString docs = qEnvironmentVariable("OPM_WRITE_DOCS");
    if (docs.isEmpty())
        QSKIP("OPM_WRITE_DOCS is not set");

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
    QVERIFY(QTest::qWaitForWindowExposed(&main));
    NerioOpm* page = P::setupPage(&main);
    verifyInside(page);

    auto shoot = [&](const QString& name, QWidget* dialog) {
        QCoreApplication::processEvents();
        QPixmap shot = main.grab();
        if (dialog) {
            QPainter painter(&shot);
            painter.drawPixmap(dialog->geometry().topLeft() - main.geometry().topLeft(), dialog->grab());
        }
        QVERIFY(shot.save(QDir(docs).filePath(name)));
    };

    reader.setReading("1310", "dBm", "-12.34");
    P::tick(page);
    P::m_pSave(page)->click();
    P::tick(page);
    shoot("setup-power-meter.png", nullptr);

    P::choose(P::m_pTestMode(page), 1);
    reader.setReading("1310", "dBm", "-3.05");
    P::tick(page);
    QPointer<CDialog> dialog = (P::m_pReference(page)->click(), P::m_pReferenceDialog(page));
    QVERIFY(dialog);
    shoot("setup-reference-dialog.png", dialog);
    P::m_pReferenceSet(page)->click();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    P::choose(P::m_pLossMeterUnit(page), 1);
    P::enter(P::m_pLossLength(page), "2.5");
    reader.setReading("1310", "dBm", "-14.52");
    P::tick(page);
    shoot("setup-loss-meter.png", nullptr);
}

QTEST_MAIN(TestOpmLayout)
#include "tst_opmlayout.moc"
