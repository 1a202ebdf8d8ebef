// The power reader going away while the page runs. The reader is the simulated one, installed
// at the reader's path of the test's own root and started by the main page as the set starts it.
#include "opmPageProbe.h"

#include <csignal>

using P = OpmPageProbe;

namespace {

// Generous: other suites may be running beside this one on a small machine.
const int kWaitMs = 20000;

// What the page shows of a live reading in dBm.
bool isReading(const QString& label) { return QRegExp("-?\\d+\\.\\d{3} dBm").exactMatch(label); }

} // namespace

class TestReaderFaults : public QObject
{
    Q_OBJECT
private slots:
    // The main page shown, its reader running and its Setup tab polling it once a second.
    void init()
    {
        m_fx.reset(new PageFixture(QByteArray(), false));
        QVERIFY(m_fx->root.installReader(LUMENPROBE_PATH));
        m_main.reset(new COpmMainPage);
        m_main->setGeometry(141, 61, 658, 398);
        m_main->show();
        QVERIFY(TestCompat::waitForShown(m_main.get()));
        m_setup = P::setupTab(m_main.get());
        OPM_TRY_VERIFY(isReading(P::reading(m_setup)), kWaitMs);
        QVERIFY(m_fx->root.readersSettleAt(1));
    }
    void cleanup()
    {
        if (m_fx)
            QCOMPARE(m_fx->closer.count(), 0);
        m_main.reset();
        m_fx.reset();
    }
    void readerKilled_data()
    {
        // flag: what the reader leaves in the record
        addColumns<int, int, QString>("signal flag colour");
        QTest::newRow("SIGKILL: its last reading stays") << int(SIGKILL) << 1 << "black";
        QTest::newRow("SIGTERM: it says no reading") << int(SIGTERM) << 0 << "red";
    }
    // The page keeps polling and shows what the record was left holding: the last reading, or,
    // when the reader ended saying there is none, the last text in red.
    void readerKilled()
    {
        QFETCH(int, signal);
        QFETCH(int, flag);
        QFETCH(QString, colour);

        QVERIFY(record()->pid > 0);
        QCOMPARE(::kill(pid_t(record()->pid), signal), 0);
        QVERIFY(m_fx->root.readersSettleAt(0));
        QCOMPARE(record()->flag, flag);

        QSignalSpy ticks(P::timer(m_setup), SIGNAL(timeout()));
        OPM_TRY_VERIFY(ticks.count() >= 1, kWaitMs);
        const QString label = P::reading(m_setup);
        OPM_TRY_VERIFY(ticks.count() >= 3, kWaitMs);
        QCOMPARE(P::reading(m_setup), label);
        QVERIFY2(isReading(label), qPrintable(label));
        QCOMPARE(P::readingColour(m_setup), colour);
        QCOMPARE(P::timer(m_setup)->interval(), 1000);
    }
    // The plug-in's start kills the reader and starts another: the page follows the new one, which
    // in turn follows the page's choice of wavelength; the reader's save key saves its reading.
    void readerRestarted()
    {
        const int32_t first = record()->pid;
        m_main->enterInit();
        OPM_TRY_VERIFY(record()->pid != first && record()->flag == OpmFlagReading, kWaitMs);
        QVERIFY(m_fx->root.readersSettleAt(1));

        P::choose(m_setup, P::Wave, 3);
        OPM_TRY_COMPARE(P::waveLength(m_setup), 3, kWaitMs);
        // A tick may catch the reader between its wavelength and its value; a later one shows the
        // single-mode reading.
        OPM_TRY_VERIFY(QRegExp("-[3-7]\\.\\d{3} dBm").exactMatch(P::reading(m_setup)), kWaitMs);

        QCOMPARE(::kill(pid_t(record()->pid), SIGUSR1), 0);
        OPM_TRY_COMPARE(CBrovaOpmDataEngine::getSingleInstance()->getResultItemCount(), 1, kWaitMs);
        QCOMPARE(CBrovaOpmDataEngine::getSingleInstance()->getLastResultItem().waveLenth, "1550");
        OPM_TRY_COMPARE(record()->needSave, 0, kWaitMs);
    }

private:
    OpmShareRecord* record() { return m_fx->reader.record(); }

    std::unique_ptr<PageFixture> m_fx;
    std::unique_ptr<COpmMainPage> m_main;
    NerioOpm* m_setup;
};

QTEST_MAIN(TestReaderFaults)
#include "tst_readerfaults.moc"
