// Setting the reference level of a wavelength through the reference dialog.
#include "opmPageProbe.h"

#include <QPointer>
#include <QtTest>

using P = OpmPageProbe;

namespace {

// Loss Meter with a reference of its own at every wavelength but 1310 nm.
QMap<QString, QString> lossSetup()
{
    return { { "TestMode", "LossMeter" }, { "Reference850", "-1" }, { "Reference1310", "0" },
             { "Reference1490", "-3" }, { "Reference1550", "-4" }, { "Reference1625", "-5" } };
}

void showReading(PageFixture& fx, const char* wave, const char* value)
{
    fx.reader.setReading(wave, "dBm", value);
    P::tick(fx.get());
}

CDialog* pressReference(NerioOpm* page)
{
    P::m_pReference(page)->click();
    return P::m_pReferenceDialog(page);
}

void flushDeletes() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

} // namespace

class TestOpmReference : public QObject
{
    Q_OBJECT
private slots:
    void set_data();
    void set();
    void dialogTexts();
    void cancel_data();
    void cancel();
    void wavelengthChangesWhileOpen();
    void pageGoesWithOpenDialog();
};

void TestOpmReference::set_data()
{
    QTest::addColumn<QStringList>("readings");
    QTest::addColumn<int>("wave");
    QTest::addColumn<QString>("stored");

    QTest::newRow("live reading") << QStringList { "-12.34" } << 1 << "-12.34";
    QTest::newRow("no light at the press") << QStringList { "-7", "---.--" } << 1 << "-7";
    QTest::newRow("no reading yet") << QStringList() << 0 << "0";
}

void TestOpmReference::set()
{
    QFETCH(QStringList, readings);
    QFETCH(int, wave);
    QFETCH(QString, stored);

    QMap<QString, QString> setup = lossSetup();
    PageFixture fx(setupText(setup));
    NerioOpm* page = fx.get();
    for (const QString& value : readings)
        showReading(fx, "1310", value.toLatin1().constData());

    QPointer<CDialog> dialog = pressReference(page);
    QVERIFY(dialog && dialog->isVisible());
    QCOMPARE(dialog->windowModality(), Qt::ApplicationModal);
    QCOMPARE(P::m_sOpmRef(page).flag, 1);
    P::m_pReferenceSet(page)->click();

    QCOMPARE(fieldText(P::m_aWaveLengthRef(page)[wave]), stored);
    QCOMPARE(P::m_pOpmRefLabel(page)->text(), "Ref.: " + stored + " dBm");
    QCOMPARE(P::m_sOpmRef(page).flag, 0);
    QVERIFY(!P::m_pReferenceDialog(page));
    flushDeletes();
    QVERIFY(!dialog);

    const QString keys[] = { "Reference850", "Reference1310", "Reference1490", "Reference1550",
                             "Reference1625" };
    setup[keys[wave]] = stored;
    const QMap<QString, QString> file = storedSetup();
    for (const QString& key : keys)
        QCOMPARE(file.value(key), setup.value(key));

    // The loss is now measured against the new reference.
    showReading(fx, readings.isEmpty() ? "850" : "1310", "-20");
    QCOMPARE(P::m_pOpmCurValue(page)->text(),
             QString::asprintf("%.6f dB", stored.toDouble() + 20.0));
}

void TestOpmReference::dialogTexts()
{
    PageFixture fx(setupText(lossSetup()));
    showReading(fx, "1310", "-12.34");
    pressReference(fx.get());
    QCOMPARE(P::m_pRefLabel2(fx.get())->text(), QString("Current Optical Level:-12.34 dBm at 1310 nm"));
    QCOMPARE(P::m_pRefLabel3(fx.get())->text(),
             QString("Or press Cancel instead if you prefer to keep the previously stored value of 0 dBm"));
}

void TestOpmReference::cancel_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("Cancel button") << 0;
    QTest::newRow("Escape") << 1;
    QTest::newRow("closed") << 2;
}

void TestOpmReference::cancel()
{
    QFETCH(int, way);

    PageFixture fx(setupText(lossSetup()));
    NerioOpm* page = fx.get();
    showReading(fx, "1550", "-12.34");
    const QString label = P::m_pOpmRefLabel(page)->text();
    QPointer<CDialog> dialog = pressReference(page);
    QVERIFY(dialog);
    QVERIFY(QFile::remove(DevicePaths::settingFile()));

    if (way == 0)
        P::m_pReferenceCancel(page)->click();
    else if (way == 1)
        QTest::keyClick(dialog.data(), Qt::Key_Escape);
    else
        dialog->close();

    QVERIFY(!P::m_pReferenceDialog(page));
    QCOMPARE(P::m_sOpmRef(page).flag, 0);
    QCOMPARE(fieldText(P::m_aWaveLengthRef(page)[3]), QString("-4"));
    QCOMPARE(P::m_pOpmRefLabel(page)->text(), label);
    QVERIFY(!QFile::exists(DevicePaths::settingFile()));
    flushDeletes();
    QVERIFY(!dialog);

    // The capture follows the reading again.
    showReading(fx, "1550", "-9");
    QCOMPARE(fieldText(P::m_sOpmRef(page).value), QString("-9"));
}

// The reading captured at the press is stored for the wavelength the reader reports at Set.
void TestOpmReference::wavelengthChangesWhileOpen()
{
    PageFixture fx(setupText(lossSetup()));
    NerioOpm* page = fx.get();
    showReading(fx, "1310", "-12.34");
    pressReference(page);

    showReading(fx, "1550", "-20");
    QCOMPARE(fieldText(P::m_sOpmRef(page).value), QString("-12.34"));
    P::m_pReferenceSet(page)->click();

    QCOMPARE(fieldText(P::m_aWaveLengthRef(page)[3]), QString("-12.34"));
    QCOMPARE(fieldText(P::m_aWaveLengthRef(page)[1]), QString("0"));
    QCOMPARE(P::m_pOpmRefLabel(page)->text(), QString("Ref.: -12.34 dBm"));
    const QMap<QString, QString> file = storedSetup();
    QCOMPARE(file.value("Reference1550"), QString("-12.34"));
    QCOMPARE(file.value("Reference1310"), QString("0"));
}

void TestOpmReference::pageGoesWithOpenDialog()
{
    PageFixture fx(setupText(lossSetup()));
    showReading(fx, "1310", "-12.34");
    QPointer<CDialog> dialog = pressReference(fx.get());
    QVERIFY(QFile::remove(DevicePaths::settingFile()));
    fx.page.reset();
    QVERIFY(!dialog);
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(!QFile::exists(DevicePaths::settingFile()));
}

QTEST_MAIN(TestOpmReference)
#include "tst_opmreference.moc"
