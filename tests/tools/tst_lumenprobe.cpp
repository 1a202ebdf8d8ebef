// The simulated power reader, run as the page runs it: in a device root of the test's own,
// which is also its working folder and so decides the shared record they meet in. The reader
// writes its texts first and flag (or needSave) last, so the tests wait for those, never for a
// fixed time.
#include "opmShareRecord.h"
#include "testSupport.h"

#include <QtTest>

#include <csignal>
#include <cstring>
#include <memory>
#include <sys/shm.h>

namespace {

// Generous: six suites may be running side by side on a small machine.
constexpr int kWaitMs = 20000;
const char* const kWavelengths[] = { "850", "1310", "1490", "1550", "1625" };

// A text field as the page reads it; one without its NUL inside says so.
template <size_t N> QByteArray text(const char (&field)[N])
{
    return std::memchr(field, '\0', N) ? QByteArray(field) : QByteArray(field, N) + "<no NUL>";
}

// The reader's fields in one line: wavelenth|unit|value|flag|needSave|deviceType.
QByteArray fields(const OpmShareRecord* r)
{
    return text(r->wavelenth) + '|' + text(r->unit) + '|' + text(r->value) + '|'
        + QByteArray::number(r->flag) + '|' + QByteArray::number(r->needSave) + '|'
        + text(r->deviceType);
}

} // namespace

class TestLumenProbe : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void writesLiveReading();
    void followsTarget_data();
    void followsTarget();
    void saveKeySetsNeedSave();
    void togglesState_data();
    void togglesState();
    void endsCleanly_data();
    void endsCleanly();
    void playsScenario();
    void survivesHostileScenario();

private:
    bool startProbe(const QByteArray& scenario = QByteArray());
    int probeExitCode();
    void signalProbe(int signal) { ::kill(pid_t(TestCompat::processId(*m_probe)), signal); }
    OpmShareRecord* rec() { return m_writer->record(); }

    std::unique_ptr<TestDeviceRoot> m_root;
    std::unique_ptr<RecordWriter> m_writer;
    std::unique_ptr<QProcess> m_probe;
};

void TestLumenProbe::init()
{
    m_root.reset(new TestDeviceRoot);
    QVERIFY(m_root->isValid());
    m_writer.reset(new RecordWriter);
    QVERIFY(m_writer->isAttached());
    std::memset(rec(), 0, sizeof *rec());
}

void TestLumenProbe::cleanup()
{
    if (m_probe) {
        m_probe->kill();
        m_probe->waitForFinished(kWaitMs);
    }
    m_probe.reset();
    if (m_writer && m_writer->isAttached())
        shmdt(m_writer->record());
    m_writer.reset();
    m_root.reset();
}

// Starts the reader, playing the given scenario when there is one.
bool TestLumenProbe::startProbe(const QByteArray& scenario)
{
    const QString file = m_root->file(QString::fromLatin1("/scenario.txt"));
    if (!scenario.isNull() && !m_root->writeFile(QString::fromLatin1("/scenario.txt"), scenario))
        return false;
    m_probe.reset(new QProcess);
    m_probe->setWorkingDirectory(m_root->path());
    m_probe->start(QString::fromLatin1(LUMENPROBE_PATH),
        scenario.isNull() ? QStringList() : QStringList({ "--scenario", file }));
    return m_probe->waitForStarted(kWaitMs);
}

// Waits for the reader to end by itself: its exit code, or -1 when it did not end normally.
int TestLumenProbe::probeExitCode()
{
    const bool ended = m_probe->waitForFinished(kWaitMs);
    return ended && m_probe->exitStatus() == QProcess::NormalExit ? m_probe->exitCode() : -1;
}

void TestLumenProbe::writesLiveReading()
{
    QVERIFY(startProbe());
    OPM_TRY_COMPARE(rec()->flag, int32_t(OpmFlagReading), kWaitMs);
    QCOMPARE(rec()->pid, int32_t(TestCompat::processId(*m_probe)));
    const OpmShareRecord seen = *rec(); // the value changes while we look
    const QByteArray first = text(seen.value);
    QCOMPARE(fields(&seen), "850|dBm|" + first + "|1|0|SIM-OPM-1");
    // "%.2f"; multimode at 850 nm over a few kilometres: well below the source, far above the
    // floor.
    QVERIFY2(TestCompat::containsMatch(QRegExp("^-(9|1\\d)\\.\\d\\d$"), first),
        first.constData());
    OPM_TRY_VERIFY(text(rec()->value) != first, kWaitMs);
}

void TestLumenProbe::followsTarget_data()
{
    QTest::addColumn<int>("initial");
    QTest::addColumn<int>("target");
    QTest::newRow("850 to 1310") << 0 << 1;
    QTest::newRow("asked for 1550 before it started, then 850") << 3 << 0;
    QTest::newRow("no wavelength asked for yet, then 1625") << 42 << 4;
}

void TestLumenProbe::followsTarget()
{
    QFETCH(int, initial);
    QFETCH(int, target);
    rec()->wavelenthTarget = initial;
    QVERIFY(startProbe());
    OPM_TRY_COMPARE(rec()->flag, int32_t(OpmFlagReading), kWaitMs);
    QCOMPARE(text(rec()->wavelenth), QByteArray(kWavelengths[initial < 5 ? initial : 0]));

    rec()->wavelenthTarget = target;
    OPM_TRY_COMPARE(text(rec()->wavelenth), QByteArray(kWavelengths[target]), kWaitMs);
    // The value follows its wavelength in the same write: single-mode links lose far less.
    const double low = target == 0 ? -20 : -8;
    const double high = target == 0 ? -8 : -3;
    auto value = [this] { return text(rec()->value).toDouble(); };
    OPM_TRY_VERIFY2(
        value() > low && value() < high, text(rec()->value).constData(), kWaitMs);
}

void TestLumenProbe::saveKeySetsNeedSave()
{
    QVERIFY(startProbe());
    OPM_TRY_COMPARE(rec()->flag, int32_t(OpmFlagReading), kWaitMs);
    QCOMPARE(rec()->needSave, 0);
    signalProbe(SIGUSR1);
    OPM_TRY_COMPARE(rec()->needSave, 1, kWaitMs);
    // The page clears the request; the next key press asks again.
    rec()->needSave = 0;
    signalProbe(SIGUSR1);
    OPM_TRY_COMPARE(rec()->needSave, 1, kWaitMs);
}

void TestLumenProbe::togglesState_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("flagOn");
    QTest::newRow("module not connected") << int(SIGUSR2) << int(OpmFlagNotConnected);
    QTest::newRow("no light") << int(SIGHUP) << int(OpmFlagReading);
}

void TestLumenProbe::togglesState()
{
    QFETCH(int, signal);
    QFETCH(int, flagOn);
    QVERIFY(startProbe());
    OPM_TRY_COMPARE(rec()->flag, int32_t(OpmFlagReading), kWaitMs);
    signalProbe(signal);
    OPM_TRY_COMPARE(text(rec()->value), QByteArray("---.--"), kWaitMs);
    OPM_TRY_COMPARE(rec()->flag, int32_t(flagOn), kWaitMs);
    signalProbe(signal);
    OPM_TRY_VERIFY(
        rec()->flag == OpmFlagReading && text(rec()->value) != "---.--", kWaitMs);
    QVERIFY(text(rec()->value).toDouble() < -3);
}

void TestLumenProbe::endsCleanly_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << int(SIGTERM);
    QTest::newRow("SIGINT") << int(SIGINT);
}

void TestLumenProbe::endsCleanly()
{
    QFETCH(int, signal);
    QVERIFY(startProbe());
    OPM_TRY_COMPARE(rec()->flag, int32_t(OpmFlagReading), kWaitMs);
    signalProbe(signal);
    QCOMPARE(probeExitCode(), 0);
    QCOMPARE(rec()->flag, int32_t(OpmFlagNoReading));
    // The segment stays for the page: not marked for removal.
    struct shmid_ds info;
    QCOMPARE(shmctl(shmget(ftok(".", 1), 0, 0), IPC_STAT, &info), 0);
    QCOMPARE(int(info.shm_perm.mode & SHM_DEST), 0);
}

void TestLumenProbe::playsScenario()
{
    // Each step is waited for by the field it writes last; the second comes late enough that
    // the first is seen even on a busy machine.
    rec()->wavelenthTarget = 2;
    QVERIFY(startProbe("# a reading, then a relative one with a save request\n"
                       "0 wavelenth=1310 unit=dBm value=-7.50 flag=1 deviceType=\"SCN \\\"1\\\"\"\n"
                       "\n"
                       "3000   unit=dB value=\" 3.50\" needSave=1 wavelenth=1625  # relative\n"
                       "3500 end\n"));
    OPM_TRY_COMPARE(rec()->flag, int32_t(OpmFlagReading), kWaitMs);
    QCOMPARE(rec()->pid, int32_t(TestCompat::processId(*m_probe)));
    QCOMPARE(fields(rec()), QByteArray("1310|dBm|-7.50|1|0|SCN \"1\""));
    OPM_TRY_COMPARE(rec()->needSave, 1, kWaitMs);
    QCOMPARE(fields(rec()), QByteArray("1625|dB| 3.50|1|1|SCN \"1\""));

    QCOMPARE(probeExitCode(), 0);
    QCOMPARE(m_probe->readAllStandardError(), QByteArray());
    // Gone means no reading; the page's wish was never followed: a scenario owns the record.
    QCOMPARE(fields(rec()), QByteArray("1625|dB| 3.50|0|1|SCN \"1\""));
    QCOMPARE(rec()->wavelenthTarget, 2);
}

void TestLumenProbe::survivesHostileScenario()
{
    QByteArray lines;
    for (int i = 0; i < 300; ++i) // binary, with NULs and line ends among it
        lines += char((i * 37) & 0xff);
    lines += "\n0 value=" + QByteArray(5000, '9') + '\n';
    lines += "0 colour=red\n0 value=\"1\\x002\"\n0 value=\x01\x1b[2J\n0 value=\"-1.5\n"
             "99999999999 value=3\n"
             "0 deviceType=ABCDEFGHIJKLMNOPQRSTUVWXYZ value=-1234567890.1234567\n"
             "400 value=-1.00 flag=1\n400 end\n";
    QVERIFY(startProbe(lines));
    QCOMPARE(probeExitCode(), 0);
    const QByteArray errors = m_probe->readAllStandardError();
    QVERIFY2(errors.contains("line skipped") && errors.contains("cut"), errors.constData());
    // Overlong texts are cut to their field, NUL inside; the good lines still play.
    QCOMPARE(fields(rec()), QByteArray("||-1.00|0|0|ABCDEFGHIJKLMNO"));
}

OPM_TEST_GUILESS_MAIN(TestLumenProbe)
#include "tst_lumenprobe.moc"
