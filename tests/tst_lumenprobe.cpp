// The simulated power reader and the record inspector, run as the page and an operator run
// them: in a device root of the test's own, which is also their working folder and so decides
// the shared record they meet in.
#include "fixedText.h"
#include "opmShareRecord.h"
#include "testSupport.h"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <cstring>
#include <memory>
#include <sys/ipc.h>
#include <sys/shm.h>

namespace {

template <size_t N> QByteArray text(const char (&field)[N])
{
    return QByteArray(field, int(FixedText::length(field)));
}

template <size_t N> bool hasNul(const char (&field)[N])
{
    return std::memchr(field, '\0', N) != nullptr;
}

double valueOf(const OpmShareRecord* record)
{
    return text(record->value).toDouble();
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
    void ignoresUnknownTarget_data();
    void ignoresUnknownTarget();
    void saveKeySetsNeedSave();
    void togglesState_data();
    void togglesState();
    void endsCleanly_data();
    void endsCleanly();
    void playsScenario();
    void cutsOverlongTexts();
    void skipsHostileLines_data();
    void skipsHostileLines();
    void refusesBadCommandLine_data();
    void refusesBadCommandLine();

    void inspectorShowsFieldsBounded();
    void inspectorSets_data();
    void inspectorSets();
    void inspectorFollows();
    void inspectorNeedsSegment();

private:
    bool startProbe(const QStringList& arguments = QStringList());
    bool writeScenario(const QByteArray& lines);
    bool runToEnd(QProcess* process, int* exitCode);
    QByteArray runInspector(const QStringList& arguments, int* exitCode);
    void signalProbe(int signal) { ::kill(pid_t(m_probe->processId()), signal); }
    OpmShareRecord* rec() { return m_writer->record(); }
    QString scenarioPath() const { return m_root->file(QStringLiteral("/scenario.txt")); }

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
    if (m_probe && m_probe->state() != QProcess::NotRunning) {
        m_probe->kill();
        m_probe->waitForFinished(10000);
    }
    m_probe.reset();
    if (m_writer && m_writer->isAttached())
        shmdt(m_writer->record());
    m_writer.reset();
    m_root.reset();
}

bool TestLumenProbe::startProbe(const QStringList& arguments)
{
    m_probe.reset(new QProcess);
    m_probe->setWorkingDirectory(m_root->path());
    m_probe->start(QStringLiteral(LUMENPROBE_PATH), arguments);
    return m_probe->waitForStarted(30000);
}

bool TestLumenProbe::writeScenario(const QByteArray& lines)
{
    return m_root->writeFile(QStringLiteral("/scenario.txt"), lines);
}

bool TestLumenProbe::runToEnd(QProcess* process, int* exitCode)
{
    const bool ended
        = process->waitForFinished(60000) && process->exitStatus() == QProcess::NormalExit;
    *exitCode = process->exitCode();
    return ended;
}

QByteArray TestLumenProbe::runInspector(const QStringList& arguments, int* exitCode)
{
    QProcess inspector;
    inspector.setWorkingDirectory(m_root->path());
    inspector.start(QStringLiteral(OPMRECORD_PATH), arguments);
    if (!inspector.waitForStarted(30000) || !runToEnd(&inspector, exitCode)) {
        inspector.kill();
        inspector.waitForFinished(10000);
        *exitCode = -1;
    }
    return inspector.readAllStandardOutput() + inspector.readAllStandardError();
}

void TestLumenProbe::writesLiveReading()
{
    QVERIFY(startProbe());
    QTRY_COMPARE_WITH_TIMEOUT(rec()->pid, int32_t(m_probe->processId()), 10000);
    QTRY_COMPARE(rec()->flag, int32_t(OpmFlagReading));
    QCOMPARE(text(rec()->deviceType), QByteArray("SIM-OPM-1"));
    QCOMPARE(text(rec()->unit), QByteArray("dBm"));
    QCOMPARE(text(rec()->wavelenth), QByteArray("850"));
    QVERIFY(hasNul(rec()->wavelenth) && hasNul(rec()->unit) && hasNul(rec()->value)
        && hasNul(rec()->deviceType));
    const QByteArray first = text(rec()->value);
    QVERIFY2(QRegularExpression(QStringLiteral("^-?\\d+\\.\\d\\d$"))
                 .match(QString::fromLatin1(first))
                 .hasMatch(),
        first.constData());
    // Multimode at 850 nm over a few kilometres: well below the source, far above the floor.
    QVERIFY2(valueOf(rec()) > -20 && valueOf(rec()) < -8, first.constData());
    QTRY_VERIFY_WITH_TIMEOUT(text(rec()->value) != first, 10000);
}

void TestLumenProbe::followsTarget_data()
{
    QTest::addColumn<int>("initial");
    QTest::addColumn<QByteArray>("initialText");
    QTest::addColumn<int>("target");
    QTest::addColumn<QByteArray>("targetText");
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");

    QTest::newRow("850 to 1310") << 0 << QByteArray("850") << 1 << QByteArray("1310") << -8.0
                                 << -3.0;
    QTest::newRow("850 to 1490") << 0 << QByteArray("850") << 2 << QByteArray("1490") << -8.0
                                 << -3.0;
    QTest::newRow("850 to 1550") << 0 << QByteArray("850") << 3 << QByteArray("1550") << -8.0
                                 << -3.0;
    QTest::newRow("850 to 1625") << 0 << QByteArray("850") << 4 << QByteArray("1625") << -8.0
                                 << -3.0;
    QTest::newRow("asked for 1550 before it started")
        << 3 << QByteArray("1550") << 0 << QByteArray("850") << -20.0 << -8.0;
    QTest::newRow("no wavelength asked for yet")
        << 42 << QByteArray("850") << 1 << QByteArray("1310") << -8.0 << -3.0;
}

void TestLumenProbe::followsTarget()
{
    QFETCH(int, initial);
    QFETCH(QByteArray, initialText);
    QFETCH(int, target);
    QFETCH(QByteArray, targetText);
    QFETCH(double, low);
    QFETCH(double, high);
    rec()->wavelenthTarget = initial;
    QVERIFY(startProbe());
    QTRY_COMPARE_WITH_TIMEOUT(rec()->pid, int32_t(m_probe->processId()), 10000);
    QCOMPARE(text(rec()->wavelenth), initialText);
    rec()->wavelenthTarget = target;
    QTRY_COMPARE_WITH_TIMEOUT(text(rec()->wavelenth), targetText, 10000);
    QVERIFY2(valueOf(rec()) > low && valueOf(rec()) < high, rec()->value);
    QCOMPARE(rec()->wavelenthTarget, int32_t(target));
}

void TestLumenProbe::ignoresUnknownTarget_data()
{
    QTest::addColumn<int>("target");
    QTest::newRow("5") << 5;
    QTest::newRow("-1") << -1;
    QTest::newRow("1310 as a number") << 1310;
}

void TestLumenProbe::ignoresUnknownTarget()
{
    QFETCH(int, target);
    rec()->wavelenthTarget = 3;
    QVERIFY(startProbe());
    QTRY_COMPARE_WITH_TIMEOUT(text(rec()->wavelenth), QByteArray("1550"), 10000);
    rec()->wavelenthTarget = target;
    // Several switching delays long: time enough to have wrongly switched.
    QTest::qWait(1200);
    QCOMPARE(text(rec()->wavelenth), QByteArray("1550"));
    QCOMPARE(rec()->flag, int32_t(OpmFlagReading));
    QCOMPARE(m_probe->state(), QProcess::Running);
}

void TestLumenProbe::saveKeySetsNeedSave()
{
    QVERIFY(startProbe());
    QTRY_COMPARE_WITH_TIMEOUT(rec()->pid, int32_t(m_probe->processId()), 10000);
    QCOMPARE(rec()->needSave, 0);
    signalProbe(SIGUSR1);
    QTRY_COMPARE(rec()->needSave, 1);
    // The page clears the request; the next key press asks again.
    rec()->needSave = 0;
    signalProbe(SIGUSR1);
    QTRY_COMPARE(rec()->needSave, 1);
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
    QTRY_COMPARE_WITH_TIMEOUT(rec()->pid, int32_t(m_probe->processId()), 10000);
    signalProbe(signal);
    QTRY_COMPARE(text(rec()->value), QByteArray("---.--"));
    QTRY_COMPARE(rec()->flag, int32_t(flagOn));
    signalProbe(signal);
    QTRY_VERIFY(text(rec()->value) != "---.--");
    QCOMPARE(rec()->flag, int32_t(OpmFlagReading));
    QVERIFY(valueOf(rec()) < -3);
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
    QTRY_COMPARE_WITH_TIMEOUT(rec()->flag, int32_t(OpmFlagReading), 10000);
    signalProbe(signal);
    int exitCode = -1;
    QVERIFY(runToEnd(m_probe.get(), &exitCode));
    QCOMPARE(exitCode, 0);
    QCOMPARE(rec()->flag, int32_t(OpmFlagNoReading));
    // The segment stays for the page: not marked for removal.
    const int id = shmget(ftok(".", 1), 0, 0);
    QVERIFY(id != -1);
    struct shmid_ds info;
    QCOMPARE(shmctl(id, IPC_STAT, &info), 0);
    QCOMPARE(info.shm_perm.mode & SHM_DEST, 0);
}

void TestLumenProbe::playsScenario()
{
    QVERIFY(
        writeScenario("# a reading, then a relative one with a save request\n"
                      "0 wavelenth=1310 unit=dBm value=-7.50 flag=1 deviceType=\"SCN \\\"1\\\"\"\n"
                      "\n"
                      "1500   unit=dB value=\" 3.50\" needSave=1 wavelenth=1625  # relative\n"
                      "3000 end\n"));
    rec()->wavelenthTarget = 2;
    QVERIFY(startProbe({ QStringLiteral("--scenario"), scenarioPath() }));
    QTRY_COMPARE_WITH_TIMEOUT(text(rec()->value), QByteArray("-7.50"), 10000);
    QCOMPARE(text(rec()->wavelenth), QByteArray("1310"));
    QCOMPARE(text(rec()->deviceType), QByteArray("SCN \"1\""));
    QCOMPARE(rec()->pid, int32_t(m_probe->processId()));
    QTRY_COMPARE_WITH_TIMEOUT(text(rec()->value), QByteArray(" 3.50"), 10000);
    QCOMPARE(text(rec()->unit), QByteArray("dB"));
    QCOMPARE(text(rec()->wavelenth), QByteArray("1625"));
    QCOMPARE(rec()->needSave, 1);
    int exitCode = -1;
    QVERIFY(runToEnd(m_probe.get(), &exitCode));
    QCOMPARE(exitCode, 0);
    QCOMPARE(m_probe->readAllStandardError(), QByteArray());
    // A scenario owns the record: the page's wish was not followed.
    QCOMPARE(text(rec()->wavelenth), QByteArray("1625"));
    QCOMPARE(rec()->wavelenthTarget, 2);
    QCOMPARE(rec()->flag, int32_t(OpmFlagNoReading));
}

void TestLumenProbe::cutsOverlongTexts()
{
    std::memset(rec()->deviceType, 'x', sizeof rec()->deviceType);
    QVERIFY(writeScenario("0 deviceType=ABCDEFGHIJKLMNOPQRSTUVWXYZ value=-1234567890.1234567 "
                          "wavelenth=\"1550 nm SMF\"\n0 end\n"));
    QVERIFY(startProbe({ QStringLiteral("--scenario"), scenarioPath() }));
    int exitCode = -1;
    QVERIFY(runToEnd(m_probe.get(), &exitCode));
    QCOMPARE(exitCode, 0);
    QCOMPARE(text(rec()->deviceType), QByteArray("ABCDEFGHIJKLMNO"));
    QCOMPARE(text(rec()->value), QByteArray("-1234567890.123"));
    QCOMPARE(text(rec()->wavelenth), QByteArray("1550 nm"));
    QVERIFY(hasNul(rec()->deviceType) && hasNul(rec()->value) && hasNul(rec()->wavelenth));
    QCOMPARE(m_probe->readAllStandardError().count("cut"), 3);
}

void TestLumenProbe::skipsHostileLines_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<QString>("message");

    QByteArray binary;
    for (int i = 0; i < 300; ++i)
        binary += char((i * 37) & 0xff);
    QTest::newRow("no time") << QByteArray("value=3") << "time";
    QTest::newRow("time past a day") << QByteArray("99999999999 value=3") << "time";
    QTest::newRow("negative time") << QByteArray("-5 value=3") << "time";
    QTest::newRow("time only") << QByteArray("0") << "without anything to do";
    QTest::newRow("unknown field") << QByteArray("0 colour=red") << "no field called \"colour\"";
    QTest::newRow("word for a number") << QByteArray("0 flag=one") << "whole number";
    QTest::newRow("number past 32 bits") << QByteArray("0 needSave=4294967296") << "whole number";
    QTest::newRow("no equals") << QByteArray("0 flag 1") << "field=value";
    QTest::newRow("open quote") << QByteArray("0 value=\"-1.5") << "closing quote";
    QTest::newRow("NUL escape") << QByteArray("0 value=\"1\\x002\"") << "\\x00";
    QTest::newRow("unknown escape") << QByteArray("0 value=\"\\q\"") << "escape";
    QTest::newRow("control characters") << QByteArray("0 value=\x01\x02\x1b[2J") << "control";
    QTest::newRow("binary") << binary << "line skipped";
    QTest::newRow("long line") << "0 value=" + QByteArray(5000, '9') << "longer than";
    QTest::newRow("time goes back") << QByteArray("300 unit=mW\n10 unit=dB") << "time goes back";
}

// Whatever precedes it, the good part of the file still plays and the reader ends normally.
void TestLumenProbe::skipsHostileLines()
{
    QFETCH(QByteArray, lines);
    QFETCH(QString, message);
    QVERIFY(writeScenario(lines + "\n400 value=-1.00 flag=1\n400 end\n"));
    QVERIFY(startProbe({ QStringLiteral("--scenario"), scenarioPath() }));
    int exitCode = -1;
    QVERIFY(runToEnd(m_probe.get(), &exitCode));
    QCOMPARE(exitCode, 0);
    const QString errors = QString::fromLatin1(m_probe->readAllStandardError());
    QVERIFY2(errors.contains(message) && errors.contains(QStringLiteral("line skipped")),
        qPrintable(errors));
    QCOMPARE(text(rec()->value), QByteArray("-1.00"));
    QVERIFY(text(rec()->unit) != "dB");
}

void TestLumenProbe::refusesBadCommandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");
    QTest::newRow("missing scenario")
        << QStringList { QStringLiteral("--scenario"), QStringLiteral("nowhere.txt") } << 1
        << "cannot be read";
    QTest::newRow("scenario without file")
        << QStringList { QStringLiteral("--scenario") } << 2 << "option";
    QTest::newRow("unknown option") << QStringList { QStringLiteral("--fast") } << 2 << "option";
}

void TestLumenProbe::refusesBadCommandLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    QVERIFY(startProbe(arguments));
    int code = -1;
    QVERIFY(runToEnd(m_probe.get(), &code));
    QCOMPARE(code, exitCode);
    const QString errors = QString::fromLatin1(m_probe->readAllStandardError());
    QVERIFY2(errors.contains(message), qPrintable(errors));
}

void TestLumenProbe::inspectorShowsFieldsBounded()
{
    m_writer->setReading("1550", "dBm", "-1.00", 1);
    const char wavelength[8] = { '1', '5', '\x01', '\xff', '"', '\0', 'z', 'z' };
    std::memcpy(rec()->wavelenth, wavelength, sizeof wavelength);
    m_writer->setRawValue(
        { 'A', 'A', 'A', 'A', 'A', 'A', 'A', 'A', 'A', 'A', 'A', 'A', 'A', 'A', 'A', 'A' });
    rec()->wavelenthTarget = 9;
    int exitCode = -1;
    const QByteArray out = runInspector({}, &exitCode);
    QCOMPARE(exitCode, 0);
    QVERIFY2(out.contains("wavelenth        @0  \"15\\x01\\xff\\\"\"\n"), out.constData());
    QVERIFY2(out.contains("value            @16 \"AAAAAAAAAAAAAAAA\" (no NUL)\n"), out.constData());
    QVERIFY2(out.contains("flag             @32 1 (reading)\n"), out.constData());
    QVERIFY2(out.contains("wavelenthTarget  @56 9 (not a wavelength)\n"), out.constData());
}

void TestLumenProbe::inspectorSets_data()
{
    QTest::addColumn<QStringList>("assignments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<int>("target");
    QTest::addColumn<QByteArray>("value");

    QTest::newRow("target") << QStringList { QStringLiteral("wavelenthTarget=3") } << 0 << 3
                            << QByteArray("-1.00");
    QTest::newRow("text and number")
        << QStringList { QStringLiteral("value=-3.20"), QStringLiteral("wavelenthTarget=-7") } << 0
        << -7 << QByteArray("-3.20");
    QTest::newRow("empty text") << QStringList { QStringLiteral("value=") } << 0 << 0
                                << QByteArray();
    QTest::newRow("text too long") << QStringList { QStringLiteral("value=1234567890123456") } << 2
                                   << 0 << QByteArray("-1.00");
    QTest::newRow("second one bad")
        << QStringList { QStringLiteral("wavelenthTarget=2"), QStringLiteral("flag=x") } << 2 << 0
        << QByteArray("-1.00");
    QTest::newRow("unknown field")
        << QStringList { QStringLiteral("colour=1") } << 2 << 0 << QByteArray("-1.00");
    QTest::newRow("no equals") << QStringList { QStringLiteral("wavelenthTarget") } << 2 << 0
                               << QByteArray("-1.00");
    QTest::newRow("number too large")
        << QStringList { QStringLiteral("wavelenthTarget=2147483648") } << 2 << 0
        << QByteArray("-1.00");
}

void TestLumenProbe::inspectorSets()
{
    QFETCH(QStringList, assignments);
    QFETCH(int, exitCode);
    QFETCH(int, target);
    QFETCH(QByteArray, value);
    m_writer->setReading("1550", "dBm", "-1.00", 1);
    QStringList arguments;
    for (const QString& assignment : assignments)
        arguments << QStringLiteral("--set") << assignment;
    int code = -1;
    const QByteArray out = runInspector(arguments, &code);
    QVERIFY2(code == exitCode, out.constData());
    QCOMPARE(rec()->wavelenthTarget, int32_t(target));
    QCOMPARE(text(rec()->value), value);
    QVERIFY(hasNul(rec()->value));
    QCOMPARE(rec()->flag, int32_t(OpmFlagReading));
}

void TestLumenProbe::inspectorFollows()
{
    m_writer->setReading("1490", "dBm", "-2.50", 1);
    QProcess inspector;
    inspector.setWorkingDirectory(m_root->path());
    inspector.start(QStringLiteral(OPMRECORD_PATH),
        { QStringLiteral("--follow"), QStringLiteral("--interval"), QStringLiteral("50") });
    QVERIFY(inspector.waitForStarted(30000));
    QByteArray out;
    QTRY_VERIFY_WITH_TIMEOUT((out += inspector.readAllStandardOutput()).count('\n') >= 2, 10000);
    m_writer->setReading("1490", "dBm", "-2.75", 1);
    QTRY_VERIFY_WITH_TIMEOUT(
        (out += inspector.readAllStandardOutput()).contains("value=\"-2.75\""), 10000);
    ::kill(pid_t(inspector.processId()), SIGINT);
    int exitCode = -1;
    const bool ended = runToEnd(&inspector, &exitCode);
    if (!ended)
        inspector.kill();
    QVERIFY(ended);
    QCOMPARE(exitCode, 0);
    QVERIFY2(
        out.contains("wavelenth=\"1490\" unit=\"dBm\" value=\"-2.50\" flag=1"), out.constData());
}

void TestLumenProbe::inspectorNeedsSegment()
{
    QTemporaryDir elsewhere;
    QVERIFY(elsewhere.isValid());
    QProcess inspector;
    inspector.setWorkingDirectory(elsewhere.path());
    inspector.start(
        QStringLiteral(OPMRECORD_PATH), { QStringLiteral("--set"), QStringLiteral("needSave=1") });
    QVERIFY(inspector.waitForStarted(30000));
    int exitCode = -1;
    QVERIFY(runToEnd(&inspector, &exitCode));
    QCOMPARE(exitCode, 1);
    QVERIFY(inspector.readAllStandardError().contains("no shared segment"));
}

QTEST_GUILESS_MAIN(TestLumenProbe)
#include "tst_lumenprobe.moc"
