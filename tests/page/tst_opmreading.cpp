// The live reading on the Setup tab: conversion, colour, bar, capture, the reader's requests.
#include "opmPageProbe.h"

#include <QRegularExpression>
#include <QtTest>

#include <cstring>

using P = OpmPageProbe;

namespace {

void setReading(PageFixture& fx, const char* wave, const char* unit, const char* value,
                int flag = 1, int needSave = 0)
{
    fx.reader.setReading(wave, unit, value, flag);
    fx.record()->needSave = needSave;
}

QString label(PageFixture& fx) { return P::m_pOpmCurValue(fx.get())->text(); }
QColor labelColour(PageFixture& fx) { return P::m_pOpmCurValue(fx.get())->textColor(); }

// The page's bar must sit where a bar given the same numbers sits.
void compareBar(PageFixture& fx, double low, double high, double value)
{
    OffsetBar expected;
    expected.setRangedOffset(low, high, value);
    OffsetBar* bar = P::m_pOffsetBarResult(fx.get());
    QCOMPARE(bar->percent(), expected.percent());
    QCOMPARE(bar->markerX(), expected.markerX());
}

// Limits as the operator sets them: the two fields, then the check box.
void setLimits(PageFixture& fx, const QString& min, const QString& max, bool on)
{
    P::m_pMinimum(fx.get())->setText(min);
    P::m_pMaximum(fx.get())->setText(max);
    P::m_pLimits(fx.get())->setChecked(true);
    P::m_pLimits(fx.get())->setChecked(on);
}

} // namespace

class TestOpmReading : public QObject
{
    Q_OBJECT
private slots:
    void display_data();
    void display();
    void noLight();
    void readerState_data();
    void readerState();
    void limits_data();
    void limits();
    void hold_data();
    void hold();
    void followsWavelength();
    void summary_data();
    void summary();
    void hostileValues_data();
    void hostileValues();
};

void TestOpmReading::display_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("lossUnit");
    QTest::addColumn<float>("length");
    QTest::addColumn<QString>("ref");
    QTest::addColumn<QString>("readerUnit");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("saved");
    QTest::addColumn<QString>("unitButton");
    QTest::addColumn<QString>("limitsUnit");
    QTest::addColumn<QString>("fiberLength");

    QTest::newRow("dBm") << int(PowerMeter) << int(dB) << 0 << 1.0f << "0" << "dBm" << "-3.21"
                         << "-3.210 dBm" << "-3.210 dBm" << "dBm" << "dBm" << "";
    QTest::newRow("mW -10") << int(PowerMeter) << int(mW) << 0 << 1.0f << "0" << "dBm" << "-10"
                            << "0.100000 mW" << "0.100000 mW" << "dBm" << "mW" << "";
    QTest::newRow("mW 0") << int(PowerMeter) << int(mW) << 0 << 1.0f << "0" << "dBm" << "0"
                          << "1.000000 mW" << "1.000000 mW" << "dBm" << "mW" << "";
    QTest::newRow("uW -10") << int(PowerMeter) << int(uW) << 0 << 1.0f << "0" << "dBm" << "-10"
                            << "100.000000 uW" << "100.000000 uW" << "dBm" << "uW" << "";
    QTest::newRow("relative dB") << int(PowerMeter) << int(dB) << 0 << 1.0f << "0" << "dB" << "2.5"
                                 << "-2.500 dB" << "-2.500 dB" << "dB" << "dB" << "";
    QTest::newRow("blanks") << int(PowerMeter) << int(dB) << 0 << 1.0f << "0" << "dBm" << " -12.5 "
                            << "-12.500 dBm" << "-12.500 dBm" << "dBm" << "dBm" << "";
    QTest::newRow("loss dB") << int(LossMeter) << int(dB) << int(LossLim_dB) << 1.0f << "-5" << "dBm"
                             << "-8" << "3.000000 dB" << "3.000000 dB" << "dBm" << "dB" << "";
    QTest::newRow("loss dB/km") << int(LossMeter) << int(dB) << int(LossLim_dBkm) << 2.0f << "-5"
                                << "dBm" << "-8" << "1.500000 dB/km" << "1.500000 dB/km" << "dBm"
                                << "dB" << "2.000000 km";
    QTest::newRow("loss dB/mi") << int(LossMeter) << int(dB) << int(LossLim_dBmi) << 2.0f << "-5"
                                << "dBm" << "-8" << "1.500000 dB/mi" << "1.500000 dB/mi" << "dBm"
                                << "dB" << "2.000000 mi";
    // Sixteen characters on the label; the saved text keeps its unit and loses a digit.
    QTest::newRow("loss too long to save") << int(LossMeter) << int(dB) << int(LossLim_dBkm) << 1.0f
                                           << "-20" << "dBm" << "-7.5" << "-12.500000 dB/km"
                                           << "-12.50000 dB/km" << "dBm" << "dB" << "1.000000 km";
}

void TestOpmReading::display()
{
    QFETCH(int, mode);
    QFETCH(int, unit);
    QFETCH(int, lossUnit);
    QFETCH(float, length);
    QFETCH(QString, ref);
    QFETCH(QString, readerUnit);
    QFETCH(QString, value);
    QFETCH(QString, shown);
    QFETCH(QString, saved);
    QFETCH(QString, unitButton);
    QFETCH(QString, limitsUnit);
    QFETCH(QString, fiberLength);

    PageFixture fx;
    NerioOpm* page = fx.get();
    P::m_eTestMode(page) = TestModeType(mode);
    P::m_eRusultUnit(page) = RusultUnit(unit);
    P::m_eLossLengthType(page) = LossLengthType(lossUnit);
    P::m_fLength(page) = length;
    FixedText::copy(P::m_aWaveLengthRef(page)[0], ref.toLatin1().constData());

    setReading(fx, "850", readerUnit.toLatin1().constData(), value.toLatin1().constData());
    P::tick(page);

    QCOMPARE(label(fx), shown);
    QCOMPARE(labelColour(fx), QColor(Qt::black));
    const Result& r = P::m_result(page);
    QCOMPARE(fieldText(r.value), saved);
    QCOMPARE(fieldText(r.limitsUnit), limitsUnit);
    QCOMPARE(fieldText(r.fiberLength), fiberLength);
    QCOMPARE(fieldText(r.testMode), QString(mode == PowerMeter ? "Power Meter" : "Loss Meter"));
    QCOMPARE(fieldText(r.waveLenth), QString("850"));
    QCOMPARE(P::m_pdBm(page)->text(), unitButton);
}

void TestOpmReading::noLight()
{
    PageFixture fx;
    NerioOpm* page = fx.get();
    setReading(fx, "1310", "dBm", "-7");
    P::tick(page);
    compareBar(fx, -60.0, 10.0, -7.0);

    setReading(fx, "1310", "dBm", "---.--");
    P::tick(page);
    QCOMPARE(label(fx), QString("---.--"));
    QCOMPARE(fieldText(P::m_result(page).value), QString("---.--"));
    // The capture keeps the last real reading, and the bar takes the text as 0.
    QCOMPARE(fieldText(P::m_sOpmRef(page).value), QString("-7"));
    compareBar(fx, -60.0, 10.0, 0.0);
}

void TestOpmReading::readerState_data()
{
    QTest::addColumn<int>("flag");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<int>("needSaveAfter");
    QTest::addColumn<int>("stored");

    QTest::newRow("no reading") << 0 << "-7.000 dBm" << QColor(Qt::red) << 1 << 0;
    QTest::newRow("not connected") << 2 << "OPM Not Connected!" << QColor(Qt::red) << 1 << 0;
    QTest::newRow("other state") << 3 << "-3.000 dBm" << QColor(Qt::black) << 0 << 0;
    QTest::newRow("reading") << 1 << "-3.000 dBm" << QColor(Qt::black) << 0 << 1;
}

void TestOpmReading::readerState()
{
    QFETCH(int, flag);
    QFETCH(QString, shown);
    QFETCH(QColor, colour);
    QFETCH(int, needSaveAfter);
    QFETCH(int, stored);

    ModalBoxCloser closer;
    PageFixture fx;
    setReading(fx, "1310", "dBm", "-7");
    P::tick(fx.get());
    QCOMPARE(label(fx), QString("-7.000 dBm"));

    setReading(fx, "1310", "dBm", "-3", flag, 1);
    P::tick(fx.get());
    QCOMPARE(label(fx), shown);
    QCOMPARE(labelColour(fx), colour);
    QCOMPARE(fx.record()->needSave, needSaveAfter);
    QCOMPARE(CBrovaOpmDataEngine::getSingleInstance()->getResultItemCount(), stored);
    QCOMPARE(closer.count(), 0);
}

void TestOpmReading::limits_data()
{
    QTest::addColumn<QString>("min");
    QTest::addColumn<QString>("max");
    QTest::addColumn<bool>("on");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QColor>("colour");
    QTest::addColumn<bool>("pass");

    QTest::newRow("at upper") << "-20" << "-10" << true << "-10" << QColor(Qt::green) << true;
    QTest::newRow("above upper") << "-20" << "-10" << true << "-9.99" << QColor(Qt::red) << false;
    QTest::newRow("at lower") << "-20" << "-10" << true << "-20" << QColor(Qt::green) << true;
    QTest::newRow("below lower") << "-20" << "-10" << true << "-20.01" << QColor(Qt::red) << false;
    // Limits typed with decimals the float cannot hold exactly: equal still passes.
    QTest::newRow("at decimal lower") << "-20.3" << "-10.1" << true << "-20.3" << QColor(Qt::green) << true;
    QTest::newRow("at decimal upper") << "-20.3" << "-10.1" << true << "-10.1" << QColor(Qt::green) << true;
    QTest::newRow("off, inside") << "-20" << "-10" << false << "-15" << QColor(Qt::black) << true;
    QTest::newRow("off, outside") << "-20" << "-10" << false << "-5" << QColor(Qt::black) << false;
}

void TestOpmReading::limits()
{
    QFETCH(QString, min);
    QFETCH(QString, max);
    QFETCH(bool, on);
    QFETCH(QString, value);
    QFETCH(QColor, colour);
    QFETCH(bool, pass);

    PageFixture fx;
    setLimits(fx, min, max, on);
    setReading(fx, "1550", "dBm", value.toLatin1().constData());
    P::tick(fx.get());

    QCOMPARE(labelColour(fx), colour);
    QCOMPARE(P::m_bPass(fx.get()), pass);
    QCOMPARE(fieldText(P::m_result(fx.get()).pass), QString(pass ? "YES" : "NO"));
    if (on)
        compareBar(fx, double(min.toFloat()), double(max.toFloat()), value.toDouble());
    else
        compareBar(fx, -60.0, 10.0, value.toDouble());
}

void TestOpmReading::hold_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("heldTitle");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");

    QTest::newRow("power") << int(PowerMeter) << "Optical Power" << "Optical Power       \t      Hold"
                           << "-7.000 dBm" << "-3.000 dBm";
    QTest::newRow("loss") << int(LossMeter) << "Loss Meter" << "Loss Meter   Hold"
                          << "7.000000 dB" << "3.000000 dB";
}

void TestOpmReading::hold()
{
    QFETCH(int, mode);
    QFETCH(QString, title);
    QFETCH(QString, heldTitle);
    QFETCH(QString, first);
    QFETCH(QString, second);

    ModalBoxCloser closer;
    PageFixture fx;
    NerioOpm* page = fx.get();
    P::m_eTestMode(page) = TestModeType(mode);
    setReading(fx, "1310", "dBm", "-7");
    P::tick(page);
    QCOMPARE(P::m_pOpmInfoTitle(page)->text(), title);

    P::m_pHold(page)->click();
    setReading(fx, "1310", "dBm", "-3", 1, 1);
    P::tick(page);
    QCOMPARE(P::m_pOpmInfoTitle(page)->text(), heldTitle);
    QCOMPARE(label(fx), first);
    QCOMPARE(fx.record()->needSave, 1);
    QCOMPARE(CBrovaOpmDataEngine::getSingleInstance()->getResultItemCount(), 0);

    P::m_pHold(page)->click();
    P::tick(page);
    QCOMPARE(P::m_pOpmInfoTitle(page)->text(), title);
    QCOMPARE(label(fx), second);
    QCOMPARE(fx.record()->needSave, 0);
    QCOMPARE(CBrovaOpmDataEngine::getSingleInstance()->getResultItemCount(), 1);
}

void TestOpmReading::followsWavelength()
{
    PageFixture fx;
    NerioOpm* page = fx.get();
    P::m_eTestMode(page) = LossMeter;
    FixedText::copy(P::m_aWaveLengthRef(page)[0], "-5");
    FixedText::copy(P::m_aWaveLengthRef(page)[2], "-3");
    const int target = fx.record()->wavelenthTarget;

    setReading(fx, "1490", "dBm", "-8");
    P::tick(page);
    // The switching tick still measures against the wavelength held before it.
    QCOMPARE(label(fx), QString("3.000000 dB"));
    QCOMPARE(P::m_pWaveLength(page)->currentIndex(), 2);
    QCOMPARE(P::m_eWaveLength(page), Type_1490nmSMF);
    QCOMPARE(fieldText(P::m_result(page).ref), QString("-3"));
    P::tick(page);
    QCOMPARE(label(fx), QString("5.000000 dB"));

    setReading(fx, "980", "dBm", "-9");
    P::tick(page);
    QCOMPARE(P::m_pWaveLength(page)->currentIndex(), 2);
    QCOMPARE(P::m_eWaveLength(page), Type_1490nmSMF);
    QCOMPARE(label(fx), QString("6.000000 dB"));
    // Following the reader is not an operator's choice: nothing goes back to the reader.
    QCOMPARE(fx.record()->wavelenthTarget, target);
}

void TestOpmReading::summary_data()
{
    QTest::addColumn<bool>("on");
    QTest::addColumn<QString>("max");
    QTest::addColumn<QString>("tail");

    QTest::newRow("limits off") << false << "10" << "";
    QTest::newRow("limits on, pass") << true << "10" << " , Pass:YES";
    QTest::newRow("limits on, fail") << true << "-20" << " , Pass:NO";
}

void TestOpmReading::summary()
{
    QFETCH(bool, on);
    QFETCH(QString, max);
    QFETCH(QString, tail);

    ModalBoxCloser closer;
    PageFixture fx;
    NerioOpm* page = fx.get();
    QCOMPARE(P::m_pSummary(page)->text(), QString(" "));

    setLimits(fx, "-60", max, on);
    setReading(fx, "1550", "dBm", "-12.34");
    P::tick(page);
    QCOMPARE(P::m_pSummary(page)->text(), QString(" "));
    P::m_pSave(page)->click();
    QCOMPARE(P::m_pSummary(page)->text(), QString(" "));
    P::tick(page);
    QCOMPARE(P::m_pSummary(page)->text(),
             "Last Saved - Loc#1 Wave length:1550 nm , Mode:Power Meter , Value:-12.340 dBm" + tail);
}

void TestOpmReading::hostileValues_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("readerUnit");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<bool>("pass");

    const int pm = PowerMeter, lm = LossMeter;
    QTest::newRow("nan dBm") << QByteArray("nan") << "dBm" << pm << int(dB) << "" << false;
    QTest::newRow("nan loss") << QByteArray("nan") << "dBm" << lm << int(LossLim_dBkm) << "" << false;
    QTest::newRow("inf mW") << QByteArray("inf") << "dBm" << pm << int(mW) << "" << false;
    QTest::newRow("1e308 dBm") << QByteArray("1e308") << "dBm" << pm << int(dB) << "" << false;
    QTest::newRow("1e308 loss") << QByteArray("1e308") << "dBm" << lm << int(LossLim_dBmi) << "" << false;
    QTest::newRow("-1e308 mW") << QByteArray("-1e308") << "dBm" << pm << int(mW) << "0.000000 mW" << false;
    QTest::newRow("-1e-320 dBm") << QByteArray("-1e-320") << "dBm" << pm << int(dB) << "-0.000 dBm" << true;
    // Sixteen bytes without a NUL: the page reads fifteen of them.
    QTest::newRow("no NUL") << QByteArray("-12.345678901234", 16) << "dBm" << pm << int(dB)
                            << "-12.346 dBm" << true;
    // Fifteen characters plus the sign: the text is cut at fifteen.
    QTest::newRow("15 chars, relative") << QByteArray("12.345678901234") << "dB" << pm << int(dB)
                                        << "-12.346 dB" << true;
    QTest::newRow("15 chars, relative loss") << QByteArray("12.345678901234") << "dB" << lm
                                             << int(LossLim_dBkm) << "12.345679 dB/km" << true;
}

void TestOpmReading::hostileValues()
{
    QFETCH(QByteArray, value);
    QFETCH(QString, readerUnit);
    QFETCH(int, mode);
    QFETCH(int, unit);
    QFETCH(QString, shown);
    QFETCH(bool, pass);

    PageFixture fx;
    NerioOpm* page = fx.get();
    P::m_eTestMode(page) = TestModeType(mode);
    if (mode == PowerMeter)
        P::m_eRusultUnit(page) = RusultUnit(unit);
    else
        P::m_eLossLengthType(page) = LossLengthType(unit);
    setLimits(fx, "-60", "10", true);

    setReading(fx, "1310", readerUnit.toLatin1().constData(), "");
    if (value.size() == 16) {
        char raw[16];
        std::memcpy(raw, value.constData(), sizeof raw);
        fx.reader.setRawValue(raw);
    } else {
        std::memcpy(fx.record()->value, value.constData(), size_t(value.size()) + 1);
    }
    P::tick(page);

    const QString text = label(fx);
    if (!shown.isEmpty())
        QCOMPARE(text, shown);
    static const QRegularExpression defined(
            QStringLiteral("^-?(nan|inf|[0-9]+\\.[0-9]+) (dBm|dB|mW|uW|dB/km|dB/mi)$"));
    QVERIFY2(defined.match(text).hasMatch(), qPrintable(text));
    QCOMPARE(P::m_bPass(page), pass);
    QCOMPARE(labelColour(fx), QColor(pass ? Qt::green : Qt::red));

    const Result& r = P::m_result(page);
    QVERIFY(std::memchr(r.value, '\0', sizeof r.value));
    QVERIFY(text.startsWith(fieldText(r.value).section(QLatin1Char(' '), 0, 0).left(6)));
    QVERIFY(std::memchr(P::m_sOpmRef(page).value, '\0', sizeof r.value));

    OffsetBar* bar = P::m_pOffsetBarResult(page);
    QVERIFY2(bar->percent() >= 0 && bar->percent() <= 100, qPrintable(QString::number(bar->percent())));
    QVERIFY2(bar->markerX() >= -1 && bar->markerX() <= 245, qPrintable(QString::number(bar->markerX())));
    bar->grab(); // painting a hostile value must not fault either
}

QTEST_MAIN(TestOpmReading)
#include "tst_opmreading.moc"
