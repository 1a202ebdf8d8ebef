// The operator's setup controls: what each one changes on the page, in the record and on disk.
#include "opmPageProbe.h"

#include <QDialog>
#include <QLineEdit>
#include <QSignalSpy>
#include <QtTest>

using P = OpmPageProbe;

namespace {

const char kLimitError[] = "Minimum must be less or equal to Maximum! Please input again.";
const char kLengthError[] = "The length must be greater than zero! Please input again.";

QByteArray limitsOn(const QString& min, const QString& max)
{
    return setupText({ { "PowerLimit", "enable" }, { "PowerLimitMinimum", min },
                       { "PowerLimitMaximum", max } });
}

QByteArray lossSetup()
{
    return setupText({ { "TestMode", "LossMeter" }, { "LossUnit", "km" }, { "PowerLimit", "enable" },
                       { "LossLength", "2.5" } });
}

// The controls that only one test mode shows.
void verifyModeLayout(NerioOpm* page, TestModeType mode)
{
    const bool power = mode == PowerMeter;
    for (QWidget* w : { static_cast<QWidget*>(P::m_pdBm(page)), static_cast<QWidget*>(P::m_pmW(page)),
                        static_cast<QWidget*>(P::m_puW(page)) })
        QCOMPARE(w->isHidden(), !power);
    for (QWidget* w : { static_cast<QWidget*>(P::m_pReference(page)),
                        static_cast<QWidget*>(P::m_pLossMeterUnit(page)),
                        static_cast<QWidget*>(P::m_pLossLength(page)),
                        static_cast<QWidget*>(P::m_pLabelLossLength(page)),
                        static_cast<QWidget*>(P::m_pOpmRefLabel(page)) })
        QCOMPARE(w->isHidden(), power);
    QVERIFY(!P::m_pOffsetBarResult(page)->isHidden());
    const int width = power ? 190 : 120;
    QCOMPARE(P::m_pLimits(page)->minimumWidth(), width);
    QCOMPARE(P::m_pLimits(page)->maximumWidth(), width);
}

} // namespace

class TestOpmControls : public QObject
{
    Q_OBJECT
private slots:
    void limits_data();
    void limits();
    void length_data();
    void length();
    void lossUnit();
    void testMode();
    void wavelength_data();
    void wavelength();
    void limitsCheckBox();
    void holdWritesNothing();
    void oneChangeRewritesEveryKey();
    void keyPad_data();
    void keyPad();
};

void TestOpmControls::limits_data()
{
    QTest::addColumn<QString>("min");
    QTest::addColumn<QString>("max");
    QTest::addColumn<bool>("editMax");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("storedMin");
    QTest::addColumn<QString>("storedMax");
    QTest::addColumn<bool>("rejected");

    QTest::newRow("max above range") << "-60" << "10" << true << "12" << "10" << "-60" << "10" << true;
    QTest::newRow("min below range") << "-60" << "10" << false << "-61" << "-60" << "-60" << "10" << true;
    QTest::newRow("min above max") << "-60" << "-10" << false << "-5" << "-60" << "-60" << "-10" << true;
    QTest::newRow("max below min") << "-20" << "-10" << true << "-30" << "-10" << "-20" << "-10" << true;
    QTest::newRow("min equal to max") << "-60" << "-10" << false << "-10" << "-10" << "-10" << "-10" << false;
    QTest::newRow("max at top") << "-60" << "0" << true << "10" << "10" << "-60" << "10" << false;
    QTest::newRow("min at bottom") << "-30" << "0" << false << "-60" << "-60" << "-60" << "0" << false;
    QTest::newRow("min with decimals") << "-60" << "10" << false << "-12.50" << "-12.50" << "-12.5" << "10" << false;
}

void TestOpmControls::limits()
{
    QFETCH(QString, min);
    QFETCH(QString, max);
    QFETCH(bool, editMax);
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    QFETCH(QString, storedMin);
    QFETCH(QString, storedMax);
    QFETCH(bool, rejected);

    ModalBoxCloser closer;
    PageFixture fx(limitsOn(min, max));
    CLineEdit* edit = editMax ? P::m_pMaximum(fx.get()) : P::m_pMinimum(fx.get());
    QString shownAtBox;
    closer.handler = [&](QWidget*) {
        shownAtBox = edit->text();
        return false;
    };
    P::enter(edit, typed);

    QCOMPARE(edit->text(), shown);
    QCOMPARE(P::m_fPowerMin(fx.get()), storedMin.toFloat());
    QCOMPARE(P::m_fPowerMax(fx.get()), storedMax.toFloat());
    const QMap<QString, QString> file = storedSetup();
    QCOMPARE(file.value("PowerLimitMinimum"), storedMin);
    QCOMPARE(file.value("PowerLimitMaximum"), storedMax);
    OffsetBar expected;
    expected.setRangedOffset(double(storedMin.toFloat()), double(storedMax.toFloat()), 0.0);
    QCOMPARE(P::m_pOffsetBarResult(fx.get())->minLabel(), expected.minLabel());
    QCOMPARE(P::m_pOffsetBarResult(fx.get())->maxLabel(), expected.maxLabel());

    QCOMPARE(closer.count(), rejected ? 1 : 0);
    if (rejected) {
        QCOMPARE(closer.boxes().first().title, QString("Error"));
        QCOMPARE(closer.boxes().first().text, QString(kLimitError));
        // The operator sees the previous limit back in the field while the box is up.
        QCOMPARE(shownAtBox, shown);
    }
}

void TestOpmControls::length_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<float>("length");
    QTest::addColumn<QString>("stored");

    QTest::newRow("zero") << "0" << "1" << 1.0f << "1";
    QTest::newRow("negative") << "-3" << "1" << 1.0f << "1";
    QTest::newRow("above range") << "100000" << "1" << 1.0f << "1";
    QTest::newRow("not a number") << "abc" << "1" << 1.0f << "1";
    QTest::newRow("top of range") << "99999" << "99999" << 99999.0f << "99999";
    QTest::newRow("trailing zero") << "2.50" << "2.50" << 2.5f << "2.5";
    QTest::newRow("small") << "0.5" << "0.5" << 0.5f << "0.5";
}

void TestOpmControls::length()
{
    QFETCH(QString, typed);
    QFETCH(QString, shown);
    QFETCH(float, length);
    QFETCH(QString, stored);

    ModalBoxCloser closer;
    PageFixture fx(setupText({ { "TestMode", "LossMeter" }, { "LossUnit", "km" },
                               { "PowerLimit", "enable" }, { "LossLength", "7" } }));
    CLineEdit* edit = P::m_pLossLength(fx.get());
    QCOMPARE(edit->text(), QString("7"));
    QString shownAtBox;
    closer.handler = [&](QWidget*) {
        shownAtBox = edit->text();
        return false;
    };
    P::enter(edit, typed);

    QCOMPARE(edit->text(), shown);
    QCOMPARE(P::m_fLength(fx.get()), length);
    QCOMPARE(storedSetup().value("LossLength"), stored);
    const bool rejected = shown != typed;
    QCOMPARE(closer.count(), rejected ? 1 : 0);
    if (rejected) {
        QCOMPARE(closer.boxes().first().title, QString("Error"));
        QCOMPARE(closer.boxes().first().text, QString(kLengthError));
        QCOMPARE(shownAtBox, QString("1"));
    }

    // The loss per length uses what was taken.
    FixedText::copy(P::m_aWaveLengthRef(fx.get())[0], "0");
    fx.reader.setReading("850", "dBm", "-10");
    P::tick(fx.get());
    QCOMPARE(P::m_pOpmCurValue(fx.get())->text(),
             QString::asprintf("%.6f dB/km", double(10.0f / length)));
}

void TestOpmControls::lossUnit()
{
    PageFixture fx(lossSetup());
    NerioOpm* page = fx.get();
    CLineEdit* edit = P::m_pLossLength(page);

    P::choose(P::m_pLossMeterUnit(page), 0);
    QCOMPARE(P::m_eLossLengthType(page), LossLim_dB);
    QVERIFY(!edit->isEnabled());
    QCOMPARE(edit->text(), QString());
    QCOMPARE(P::m_pLabelLossLength(page)->textColor(), QColor(Qt::gray));
    QCOMPARE(storedSetup().value("LossUnit"), QString("db"));
    QCOMPARE(P::m_fLength(page), 2.5f);

    P::choose(P::m_pLossMeterUnit(page), 1);
    QCOMPARE(P::m_eLossLengthType(page), LossLim_dBkm);
    QVERIFY(edit->isEnabled());
    QCOMPARE(edit->text(), QString("2.5"));
    QCOMPARE(P::m_pLabelLossLength(page)->textColor(), QColor(Qt::white));
    QCOMPARE(storedSetup().value("LossUnit"), QString("km"));

    P::choose(P::m_pLossMeterUnit(page), 2);
    QCOMPARE(P::m_eLossLengthType(page), LossLim_dBmi);
    QCOMPARE(edit->text(), QString("2.5"));
    QCOMPARE(storedSetup().value("LossUnit"), QString("mi"));
}

void TestOpmControls::testMode()
{
    PageFixture fx;
    NerioOpm* page = fx.get();
    verifyModeLayout(page, PowerMeter);
    fx.record()->wavelenthTarget = 4;

    P::m_pmW(page)->click();
    QCOMPARE(P::m_pLimits(page)->text(), QString("Power Limits (mW)"));
    QCOMPARE(storedSetup().value("UNIT"), QString("mW"));

    P::choose(P::m_pTestMode(page), 1);
    QCOMPARE(P::m_eTestMode(page), LossMeter);
    verifyModeLayout(page, LossMeter);
    QCOMPARE(P::m_pLimits(page)->text(), QString("Loss Limits"));
    QCOMPARE(storedSetup().value("TestMode"), QString("LossMeter"));

    P::choose(P::m_pTestMode(page), 0);
    QCOMPARE(P::m_eTestMode(page), PowerMeter);
    verifyModeLayout(page, PowerMeter);
    QCOMPARE(P::m_pLimits(page)->text(), QString("Power Limits (dBm)"));
    QCOMPARE(P::m_eRusultUnit(page), mW);
    QCOMPARE(storedSetup().value("TestMode"), QString("PowerMeter"));
    QCOMPARE(storedSetup().value("UNIT"), QString("mW"));

    // The reader is told the wavelength only, never the mode.
    QCOMPARE(fx.record()->wavelenthTarget, 4);
}

void TestOpmControls::wavelength_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<QString>("refLabel");

    QTest::newRow("loss meter") << "LossMeter" << "Ref.: -7.5 dBm";
    QTest::newRow("power meter") << "PowerMeter" << "Ref.: -1 dBm";
}

void TestOpmControls::wavelength()
{
    QFETCH(QString, mode);
    QFETCH(QString, refLabel);

    PageFixture fx(setupText({ { "TestMode", mode }, { "Reference850", "-1" },
                               { "Reference1550", "-7.5" } }));
    NerioOpm* page = fx.get();
    QCOMPARE(fx.record()->wavelenthTarget, 0);

    P::choose(P::m_pWaveLength(page), 3);
    QCOMPARE(fx.record()->wavelenthTarget, 3);
    QCOMPARE(P::m_pOpmRefLabel(page)->text(), refLabel);
    QCOMPARE(storedSetup().value("Wavelength"), QString("1550"));
    // The page measures at what the reader reports, not at what was asked for.
    QCOMPARE(P::m_eWaveLength(page), Type_850nmMMF);
}

void TestOpmControls::limitsCheckBox()
{
    PageFixture fx(setupText({ { "TestMode", "LossMeter" }, { "LossUnit", "km" },
                               { "LossLength", "2.5" }, { "PowerLimit", "enable" },
                               { "PowerLimitMinimum", "-20" }, { "PowerLimitMaximum", "-10" } }));
    NerioOpm* page = fx.get();
    QList<QWidget*> fields { P::m_pMinimum(page), P::m_pMaximum(page), P::m_pLossLength(page),
                             P::m_pLossMeterUnit(page) };
    for (QWidget* w : fields)
        QVERIFY(w->isEnabled());

    P::m_pLimits(page)->click();
    QVERIFY(!P::m_bPowerLimits(page));
    QVERIFY(!P::m_result(page).isLimit);
    for (QWidget* w : fields)
        QVERIFY(!w->isEnabled());
    QCOMPARE(P::m_pMinimum(page)->text(), QString("-20"));
    QCOMPARE(P::m_pMaximum(page)->text(), QString("-10"));
    QCOMPARE(P::m_pOffsetBarResult(page)->minLabel(), QString("-60.00"));
    QCOMPARE(P::m_pOffsetBarResult(page)->maxLabel(), QString("10.00"));
    QCOMPARE(storedSetup().value("PowerLimit"), QString("disable"));

    // Checking again takes over whatever the fields show, unchecked.
    P::m_pMinimum(page)->setText("-30");
    P::m_pLimits(page)->click();
    QVERIFY(P::m_bPowerLimits(page));
    QVERIFY(P::m_result(page).isLimit);
    for (QWidget* w : fields)
        QVERIFY(w->isEnabled());
    QCOMPARE(P::m_fPowerMin(page), -30.0f);
    QCOMPARE(P::m_fPowerMax(page), -10.0f);
    QCOMPARE(P::m_pOffsetBarResult(page)->minLabel(), QString("-30.00"));
    QCOMPARE(storedSetup().value("PowerLimit"), QString("enable"));
}

void TestOpmControls::holdWritesNothing()
{
    PageFixture fx;
    QVERIFY(QFile::remove(DevicePaths::settingFile()));
    P::m_pHold(fx.get())->click();
    QVERIFY(P::m_bHold(fx.get()));
    P::m_pHold(fx.get())->click();
    QVERIFY(!P::m_bHold(fx.get()));
    QVERIFY(!QFile::exists(DevicePaths::settingFile()));
}

void TestOpmControls::oneChangeRewritesEveryKey()
{
    QMap<QString, QString> setup { { "Wavelength", "1310" }, { "TestMode", "PowerMeter" },
                                   { "UNIT", "mW" }, { "PowerLimit", "enable" },
                                   { "PowerLimitMinimum", "-40" }, { "PowerLimitMaximum", "-2" },
                                   { "LossUnit", "mi" }, { "LossLength", "3.5" },
                                   { "Reference850", "-1" }, { "Reference1310", "-2" },
                                   { "Reference1490", "-3" }, { "Reference1550", "-4" },
                                   { "Reference1625", "-5" } };
    PageFixture fx(setupText(setup));
    QVERIFY(QFile::remove(DevicePaths::settingFile()));

    P::m_puW(fx.get())->click();
    setup["UNIT"] = "uW";
    QCOMPARE(storedSetup(), setup);
}

void TestOpmControls::keyPad_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<int>("boxes");

    QTest::newRow("accepted") << "-5" << "-5" << 1;
    QTest::newRow("rejected") << "12" << "10" << 2;
}

void TestOpmControls::keyPad()
{
    QFETCH(QString, entry);
    QFETCH(QString, shown);
    QFETCH(int, boxes);

    ModalBoxCloser closer;
    PageFixture fx(limitsOn("-60", "10"));
    CLineEdit* edit = P::m_pMaximum(fx.get());
    closer.handler = [&](QWidget* box) {
        if (box->objectName() != QLatin1String("CKeyPad"))
            return false;
        box->findChild<QLineEdit*>()->setText(entry);
        static_cast<QDialog*>(box)->accept();
        return true;
    };
    QSignalSpy edited(edit, &QLineEdit::textEdited);

    QVERIFY(edit->openKeyPad());
    QCOMPARE(edited.count(), 1);
    QCOMPARE(edit->text(), shown);
    QCOMPARE(P::m_fPowerMax(fx.get()), shown.toFloat());
    QCOMPARE(storedSetup().value("PowerLimitMaximum"), shown);
    QCOMPARE(closer.count(), boxes);
    if (boxes > 1)
        QCOMPARE(closer.boxes().last().text, QString(kLimitError));
}

QTEST_MAIN(TestOpmControls)
#include "tst_opmcontrols.moc"
