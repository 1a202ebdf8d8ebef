// The page opens as the operator left it: the stored setup applied at construction.
#include "opmPageProbe.h"

#include <QRegularExpression>
#include <QtTest>

#include <cstring>

using P = OpmPageProbe;
using Keys = QMap<QString, QString>;

namespace {

const Keys kDefaults { { "Wavelength", "850" },     { "TestMode", "PowerMeter" },
                       { "UNIT", "dB" },            { "PowerLimit", "disable" },
                       { "PowerLimitMinimum", "-60" }, { "PowerLimitMaximum", "10" },
                       { "LossUnit", "db" },        { "LossLength", "1" },
                       { "Reference850", "0" },     { "Reference1310", "0" },
                       { "Reference1490", "0" },    { "Reference1550", "0" },
                       { "Reference1625", "0" } };

// What the reader was last told, so that a step that writes nothing shows.
const int kPresetTarget = 4;

} // namespace

class TestOpmRestore : public QObject
{
    Q_OBJECT
private slots:
    void restore_data();
    void restore();
    void garbage_data();
    void garbage();
    void roundTrip();
};

void TestOpmRestore::restore_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::addColumn<int>("wave");
    QTest::addColumn<int>("target");
    QTest::addColumn<QString>("refLabel");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("limitsCaption");
    QTest::addColumn<int>("lossUnit");
    QTest::addColumn<QColor>("lengthCaption");
    QTest::addColumn<bool>("limitsOn");
    QTest::addColumn<float>("min");
    QTest::addColumn<float>("max");
    QTest::addColumn<float>("length");
    QTest::addColumn<QString>("lengthText");
    QTest::addColumn<QString>("limitsUnit");
    QTest::addColumn<Keys>("file");

    const QColor grey(Qt::gray), white(Qt::white);
    const int pm = PowerMeter, lm = LossMeter;
    QTest::newRow("no file") << QByteArray() << 0 << 0 << "Ref.: 0 dBm" << pm << int(dB)
                             << "Power Limits (dBm)" << 0 << grey << false << -60.0f << 10.0f << 1.0f
                             << "" << "dB" << kDefaults;
    QTest::newRow("loss meter, km, limits on") << setupText({ { "TestMode", "LossMeter" }, { "LossUnit", "km" }, { "PowerLimit", "enable" }, { "LossLength", "2.5" } })
                                               << 0 << 0 << "Ref.: 0 dBm" << lm << int(dB) << "Loss Limits" << 1 << white
                                               << true << -60.0f << 10.0f << 2.5f << "2.5" << "dB" << Keys { { "LossLength", "2.5" } };
    QTest::newRow("1550 with its reference") << setupText({ { "Wavelength", "1550" }, { "Reference1550", "-7.5" } })
                                             << 3 << 3 << "Ref.: -7.5 dBm" << pm << int(dB) << "Power Limits (dBm)" << 0 << grey
                                             << false << -60.0f << 10.0f << 1.0f << "" << "dB" << Keys { { "Wavelength", "1550" } };
    QTest::newRow("unknown wavelength") << setupText({ { "Wavelength", "980" }, { "Reference850", "-1" } })
                                        << 0 << kPresetTarget << "Ref.: 0 dBm" << pm << int(dB) << "Power Limits (dBm)" << 0
                                        << grey << false << -60.0f << 10.0f << 1.0f << "" << "dB" << Keys { { "Wavelength", "980" } };
    QTest::newRow("mW") << setupText({ { "UNIT", "mW" } }) << 0 << 0 << "Ref.: 0 dBm" << pm << int(mW)
                        << "Power Limits (mW)" << 0 << grey << false << -60.0f << 10.0f << 1.0f << "" << "mW" << Keys();
    QTest::newRow("uW, loss meter") << setupText({ { "UNIT", "uW" }, { "TestMode", "LossMeter" } }) << 0 << 0
                                    << "Ref.: 0 dBm" << lm << int(uW) << "Loss Limits" << 0 << grey << false << -60.0f
                                    << 10.0f << 1.0f << "" << "uW" << Keys();
    // Not a loss unit the page knows: no step, so the caption keeps the white it was built with.
    QTest::newRow("LossUnit dB") << setupText({ { "LossUnit", "dB" } }) << 0 << 0 << "Ref.: 0 dBm" << pm << int(dB)
                                 << "Power Limits (dBm)" << 0 << white << false << -60.0f << 10.0f << 1.0f << ""
                                 << "dB" << Keys { { "LossUnit", "dB" } };
    QTest::newRow("crossed limits") << setupText({ { "PowerLimit", "enable" }, { "PowerLimitMinimum", "5" }, { "PowerLimitMaximum", "-5" } })
                                    << 0 << 0 << "Ref.: 0 dBm" << pm << int(dB) << "Power Limits (dBm)" << 0 << grey
                                    << true << 5.0f << -5.0f << 1.0f << "" << "dB" << Keys { { "PowerLimitMinimum", "5" } };
    // Cut to its field on the page; the file keeps it until a Set rewrites it.
    QTest::newRow("long reference") << setupText({ { "Reference850", "-12.3456789012345678" } }) << 0 << 0
                                    << "Ref.: -12.34567890123 dBm" << pm << int(dB) << "Power Limits (dBm)" << 0 << grey
                                    << false << -60.0f << 10.0f << 1.0f << "" << "dB"
                                    << Keys { { "Reference850", "-12.3456789012345678" } };
    for (const char* length : { "abc", "0", "-2", "100000" }) {
        QTest::addRow("length %s", length)
                << setupText({ { "LossUnit", "mi" }, { "PowerLimit", "enable" }, { "LossLength", length } })
                << 0 << 0 << "Ref.: 0 dBm" << pm << int(dB) << "Power Limits (dBm)" << 2 << white << true
                << -60.0f << 10.0f << 1.0f << "1" << "dB" << Keys { { "LossLength", length } };
    }
}

void TestOpmRestore::restore()
{
    QFETCH(QByteArray, settings);
    QFETCH(int, wave);
    QFETCH(int, target);
    QFETCH(QString, refLabel);
    QFETCH(int, mode);
    QFETCH(int, unit);
    QFETCH(QString, limitsCaption);
    QFETCH(int, lossUnit);
    QFETCH(QColor, lengthCaption);
    QFETCH(bool, limitsOn);
    QFETCH(float, min);
    QFETCH(float, max);
    QFETCH(float, length);
    QFETCH(QString, lengthText);
    QFETCH(QString, limitsUnit);
    QFETCH(Keys, file);

    PageFixture fx(settings, false);
    fx.record()->wavelenthTarget = kPresetTarget;
    fx.buildPage();
    NerioOpm* page = fx.get();

    QCOMPARE(P::m_pWaveLength(page)->currentIndex(), wave);
    QCOMPARE(fx.record()->wavelenthTarget, target);
    QCOMPARE(P::m_eWaveLength(page), Type_850nmMMF);
    QCOMPARE(P::m_pOpmRefLabel(page)->text(), refLabel);
    QCOMPARE(P::m_pTestMode(page)->currentIndex(), mode);
    QCOMPARE(int(P::m_eTestMode(page)), mode);
    QCOMPARE(P::m_pReference(page)->isHidden(), mode == PowerMeter);
    QCOMPARE(P::m_pdBm(page)->isHidden(), mode == LossMeter);
    QCOMPARE(P::m_pOpmRefLabel(page)->isHidden(), mode == PowerMeter);
    QCOMPARE(int(P::m_eRusultUnit(page)), unit);
    QCOMPARE(P::m_pLimits(page)->text(), limitsCaption);
    QCOMPARE(P::m_pLossMeterUnit(page)->currentIndex(), lossUnit);
    QCOMPARE(int(P::m_eLossLengthType(page)), lossUnit);
    QCOMPARE(P::m_pLabelLossLength(page)->textColor(), lengthCaption);
    QCOMPARE(P::m_pLimits(page)->isChecked(), limitsOn);
    QCOMPARE(P::m_bPowerLimits(page), limitsOn);
    QCOMPARE(P::m_result(page).isLimit, limitsOn);
    QCOMPARE(P::m_pMinimum(page)->isEnabled(), limitsOn);
    QCOMPARE(P::m_pMaximum(page)->isEnabled(), limitsOn);
    QCOMPARE(P::m_pLossMeterUnit(page)->isEnabled(), limitsOn);
    QCOMPARE(P::m_pLossLength(page)->isEnabled(), limitsOn && lossUnit != 0);
    QCOMPARE(P::m_fPowerMin(page), min);
    QCOMPARE(P::m_fPowerMax(page), max);
    QCOMPARE(P::m_fLength(page), length);
    QCOMPARE(P::m_pLossLength(page)->text(), lengthText);
    QCOMPARE(fieldText(P::m_result(page).limitsUnit), limitsUnit);
    OffsetBar bar;
    bar.setRangedOffset(limitsOn ? double(min) : -60.0, limitsOn ? double(max) : 10.0, 0.0);
    QCOMPARE(P::m_pOffsetBarResult(page)->minLabel(), bar.minLabel());
    QCOMPARE(P::m_pOffsetBarResult(page)->maxLabel(), bar.maxLabel());

    // Every start leaves a complete file, with the check box's state written back.
    const Keys stored = storedSetup();
    QCOMPARE(stored.keys(), kDefaults.keys());
    QCOMPARE(stored.value("PowerLimit"), QString(limitsOn ? "enable" : "disable"));
    for (auto it = file.cbegin(); it != file.cend(); ++it)
        QCOMPARE(stored.value(it.key()), it.value());
}

void TestOpmRestore::garbage_data()
{
    QTest::addColumn<QByteArray>("settings");

    QTest::newRow("nonsense in every key") << setupText({
            { "Wavelength", "1310nm" }, { "TestMode", "lossmeter" }, { "UNIT", "dBm" },
            { "PowerLimit", "enable" }, { "PowerLimitMinimum", "nan" }, { "PowerLimitMaximum", "inf" },
            { "LossUnit", "KM" }, { "LossLength", "1e40" }, { "Reference850", "abc" },
            { "Reference1310", "--" }, { "Reference1490", "1e999" },
            { "Reference1550", "a, b" }, { "Reference1625", "@ByteArray(\\0\\x1)" } });
    QByteArray binary;
    for (int i = 0; i < 4096; ++i)
        binary += char((i * 7919) % 256);
    QTest::newRow("binary") << binary;
}

void TestOpmRestore::garbage()
{
    QFETCH(QByteArray, settings);

    ModalBoxCloser closer;
    PageFixture fx(settings);
    NerioOpm* page = fx.get();
    const float length = P::m_fLength(page);
    QVERIFY2(length > 0.0f && length <= 99999.0f, qPrintable(QString::number(double(length))));
    for (int i = 0; i < 5; ++i)
        QVERIFY(std::memchr(P::m_aWaveLengthRef(page)[i], '\0', 16));

    // A working page: readings in both modes and every loss unit, and operator changes saved.
    static const QRegularExpression defined(
            QStringLiteral("^-?(nan|inf|[0-9]+\\.[0-9]+) (dBm|mW|uW|dB|dB/km|dB/mi)$"));
    for (int mode : { 0, 1 }) {
        P::choose(P::m_pTestMode(page), mode);
        for (int unit : { 0, 1, 2 }) {
            P::choose(P::m_pLossMeterUnit(page), unit);
            fx.reader.setReading("1490", "dBm", "-3");
            P::tick(page);
            const QString text = P::m_pOpmCurValue(page)->text();
            QVERIFY2(defined.match(text).hasMatch(), qPrintable(text));
            QVERIFY(P::m_pOffsetBarResult(page)->percent() >= 0);
            QVERIFY(P::m_pOffsetBarResult(page)->percent() <= 100);
        }
    }
    P::m_pmW(page)->click();
    P::choose(P::m_pWaveLength(page), 4);
    QCOMPARE(fx.record()->wavelenthTarget, 4);
    const Keys stored = storedSetup();
    QCOMPARE(stored.keys(), kDefaults.keys());
    QCOMPARE(stored.value("UNIT"), QString("mW"));
    QCOMPARE(stored.value("Wavelength"), QString("1625"));
    QCOMPARE(stored.value("TestMode"), QString("LossMeter"));
}

void TestOpmRestore::roundTrip()
{
    PageFixture fx;
    NerioOpm* page = fx.get();
    P::m_puW(page)->click();
    P::choose(P::m_pTestMode(page), 1);
    P::m_pLimits(page)->click();
    P::enter(P::m_pMinimum(page), "-30");
    P::enter(P::m_pMaximum(page), "-5");
    P::choose(P::m_pLossMeterUnit(page), 2);
    P::enter(P::m_pLossLength(page), "3.5");
    P::choose(P::m_pWaveLength(page), 2);
    fx.reader.setReading("1490", "dBm", "-11");
    P::tick(page);
    P::m_pReference(page)->click();
    P::m_pReferenceSet(page)->click();
    const Keys before = storedSetup();

    fx.record()->wavelenthTarget = 0;
    fx.buildPage();
    page = fx.get();
    QCOMPARE(P::m_pWaveLength(page)->currentIndex(), 2);
    QCOMPARE(fx.record()->wavelenthTarget, 2);
    QCOMPARE(P::m_eTestMode(page), LossMeter);
    QVERIFY(!P::m_pReference(page)->isHidden());
    QCOMPARE(P::m_eRusultUnit(page), uW);
    QVERIFY(P::m_pLimits(page)->isChecked());
    QCOMPARE(P::m_fPowerMin(page), -30.0f);
    QCOMPARE(P::m_fPowerMax(page), -5.0f);
    QCOMPARE(P::m_pMinimum(page)->text(), QString("-30"));
    QCOMPARE(P::m_pMaximum(page)->text(), QString("-5"));
    QCOMPARE(P::m_pLossMeterUnit(page)->currentIndex(), 2);
    QCOMPARE(P::m_eLossLengthType(page), LossLim_dBmi);
    QCOMPARE(P::m_fLength(page), 3.5f);
    QCOMPARE(P::m_pLossLength(page)->text(), QString("3.5"));
    QCOMPARE(fieldText(P::m_aWaveLengthRef(page)[2]), QString("-11"));
    QCOMPARE(P::m_pOpmRefLabel(page)->text(), QString("Ref.: -11 dBm"));
    QCOMPARE(storedSetup(), before);

    // And it measures as before once the reader has reported its wavelength: (-11 - -18) / 3.5 mi.
    fx.reader.setReading("1490", "dBm", "-18");
    P::tick(page);
    P::tick(page);
    QCOMPARE(P::m_pOpmCurValue(page)->text(), QString("2.000000 dB/mi"));
}

QTEST_MAIN(TestOpmRestore)
#include "tst_opmrestore.moc"
