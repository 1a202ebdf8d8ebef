// The power reader going away while the page runs. The reader is the simulated one, installed
// at the reader's path of the test's own root and started by the main page as the set starts it.
#include "opmPageProbe.h"

#include <csignal>
#include <cstdlib>

using P = OpmPageProbe;

namespace {

// Generous: other suites may be running beside this one on a small machine.
constexpr int kWaitMs = 20000;

// What the page shows of a live reading in dBm.
const QRegExp kReading(QString::fromLatin1("^(-?\\d+\\.\\d{3}) dBm$"));

double shownNumber(NerioOpm* page)
{
    return TestCompat::captured(kReading, P::state(page).value("label"), 1).toDouble();
}

} // namespace

class TestReaderFaults : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void readerKilled_data();
    void readerKilled();
    void readerRestarted();

private:
    OpmShareRecord* record() { return m_fx->reader.record(); }

    std::unique_ptr<PageFixture> m_fx;
    std::unique_ptr<COpmMainPage> m_main;
    NerioOpm* m_setup = nullptr;
};

// The main page shown, its reader running and its Setup tab polling it once a second.
void TestReaderFaults::init()
{
    m_fx.reset(new PageFixture(Keys(), false));
    QVERIFY(m_fx->root.installReader(QString::fromLatin1(LUMENPROBE_PATH)));
    m_main.reset(new COpmMainPage);
    m_main->setGeometry(141, 61, 658, 398);
    m_main->show();
    QVERIFY(TestCompat::waitForShown(m_main.get()));
    m_setup = P::m_pTableOpmSetup(m_main.get());
    OPM_TRY_VERIFY(TestCompat::containsMatch(kReading, P::state(m_setup).value("label")), kWaitMs);
    QCOMPARE(m_fx->root.runningReaders(), 1);
}

void TestReaderFaults::cleanup()
{
    if (m_fx)
        QCOMPARE(m_fx->closer.count(), 0);
    m_main.reset();
    m_fx.reset();
}

void TestReaderFaults::readerKilled_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("flag"); // what the reader leaves in the record
    QTest::addColumn<QString>("colour");
    QTest::newRow("SIGKILL: its last reading stays") << int(SIGKILL) << 1 << "black";
    QTest::newRow("SIGTERM: it says no reading") << int(SIGTERM) << 0 << "red";
}

// The page keeps polling and shows what the record was left holding: the last reading, or,
// when the reader ended saying there is none, the last text in red.
void TestReaderFaults::readerKilled()
{
    QFETCH(int, signal);
    QFETCH(int, flag);
    QFETCH(QString, colour);

    QVERIFY(record()->pid > 0);
    QCOMPARE(::kill(pid_t(record()->pid), signal), 0);
    OPM_TRY_COMPARE(m_fx->root.runningReaders(), 0, kWaitMs);
    const OpmShareRecord left = *record();
    QCOMPARE(left.flag, flag);

    QSignalSpy ticks(P::m_pTimer(m_setup), SIGNAL(timeout()));
    OPM_TRY_VERIFY(ticks.count() >= 1, kWaitMs);
    const QString label = P::state(m_setup).value("label");
    OPM_TRY_VERIFY(ticks.count() >= 3, kWaitMs);
    const Keys state = P::state(m_setup);
    QCOMPARE(state.value("label"), label);
    QVERIFY2(TestCompat::containsMatch(kReading, label), qPrintable(label));
    QCOMPARE(state.value("colour"), colour);
    QCOMPARE(state.value("timer"), QString("1000"));
    if (flag == OpmFlagReading) {
        const float last = float(std::atof(fieldText(left.value).toLatin1().constData()));
        QCOMPARE(label, QString::number(double(last), 'f', 3) + " dBm");
    }
}

// The plug-in's start kills the reader and starts another: the page follows the new one, which
// in turn follows the page's choice of wavelength.
void TestReaderFaults::readerRestarted()
{
    const int32_t first = record()->pid;
    m_main->enterInit();
    OPM_TRY_VERIFY(record()->pid != first && record()->flag == OpmFlagReading, kWaitMs);
    QCOMPARE(m_fx->root.runningReaders(), 1);

    P::act(m_setup, m_fx->reader, "choose wave 3");
    OPM_TRY_COMPARE(P::state(m_setup).value("wave"), QString("3/3"), kWaitMs);
    // A tick may catch the reader between its wavelength and its value; a later one shows the
    // single-mode reading.
    OPM_TRY_VERIFY(shownNumber(m_setup) > -8 && shownNumber(m_setup) < -3, kWaitMs);
    QCOMPARE(P::state(m_setup).value("waveLenth"), QString("1550"));
    QCOMPARE(m_fx->root.runningReaders(), 1);
}

QTEST_MAIN(TestReaderFaults)
#include "tst_readerfaults.moc"
