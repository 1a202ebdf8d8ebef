// Cost of one tick of the Setup tab with a live record, against the floor of what any tick
// must do (copy the record, set one label). Run: bench_tick [-callgrind | -iterations N].
#include "opm.h"
#include "opmMain.h"
#include "testSupport.h"

#include <QLabel>
#include <QtTest>

#include <cstring>

class BenchTick : public QObject
{
    Q_OBJECT

private slots:
    void floor();
    void tick_data();
    void tick();
};

void BenchTick::floor()
{
    TestDeviceRoot root;
    RecordWriter reader;
    reader.setReading("1550", "dBm", "-12.34");
    QLabel label;
    OpmShareRecord copy;
    QBENCHMARK {
        std::memcpy(&copy, reader.record(), sizeof copy);
        label.setText(QString::fromLatin1(copy.value));
    }
}

void BenchTick::tick_data()
{
    QTest::addColumn<QByteArray>("settings");
    QTest::newRow("power dBm") << QByteArray("[COpmSetup]\nTestMode=PowerMeter\nUNIT=dB\n");
    QTest::newRow("power mW, limits") << QByteArray(
            "[COpmSetup]\nTestMode=PowerMeter\nUNIT=mW\nPowerLimit=enable\n");
    QTest::newRow("loss dB/km") << QByteArray(
            "[COpmSetup]\nTestMode=LossMeter\nLossUnit=km\nLossLength=2.5\n");
}

void BenchTick::tick()
{
    QFETCH(QByteArray, settings);
    TestDeviceRoot root;
    root.writeFile("/home/Setting/opmSetup.conf", settings);
    RecordWriter reader;
    reader.setReading("1550", "dBm", " -12.34 ");
    NerioOpm page;
    CBrovaOpmDataEngine::getSingleInstance()->clearAllresultItem();
    QBENCHMARK {
        QMetaObject::invokeMethod(&page, "onTimer");
    }
}

QTEST_MAIN(BenchTick)
#include "bench_tick.moc"
