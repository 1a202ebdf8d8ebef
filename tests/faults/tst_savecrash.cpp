// A crash or a power cut at every step of a save: the stand-alone program, and a report export,
// are ended with SIGKILL at each write, fsync and rename below the folder they save into, one run
// per step; what they leave is then read as the next start or the operator would.
#include "opm.h"
#include "opmReport.h"
#include "opmSetupConfig.h"
#include "plate2promserv.h"
#include "testSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRegExp>

#include <list>

namespace {

const QString kSettingDir = "/home/Setting";
const QString kSettingFile = "/home/Setting/opmSetup.conf";
const QString kResultDir = "/home/brova/brova-rslt/opm";
const QString kReport = "/home/brova/brova-rslt/opm/route-7.html";

// A complete setup without a default in it, two of its values quoted as a hand would write
// them: the start's rewrite of it differs from it byte for byte, and its values survive only if
// one of the two survives whole.
const QByteArray kStoredSetup = "[COpmSetup]\nWavelength=1490\nTestMode=LossMeter\nUNIT=mW\n"
                                "PowerLimit=enable\nPowerLimitMinimum=-41.5\n"
                                "PowerLimitMaximum=3.25\nLossUnit=db/km\nLossLength=2.7\n"
                                "Reference850=-7.019\nReference1310=\"-3.217\"\n"
                                "Reference1490=-4.863\nReference1550=\"-12.402\"\n"
                                "Reference1625=-0.955\n";

// The last line the stand-alone program traces once its start-up save is done.
const QByteArray kStartSaved = "mreference1625 -0.955 \n";

struct CrashRun
{
    bool killed;
    QStringList steps; // "<n> <call> <path>" of each counted call
};

QString leftCopies(const TestDeviceRoot& root)
{
    return QDir(root.file(kSettingDir))
        .entryList(QStringList("opmSetup.conf.*"), QDir::Files | QDir::Hidden)
        .join(" ");
}

// Whether the steps make `file` durable: its new contents synced before the rename that puts
// them in place, the folder synced after it.
bool madeDurable(const QStringList& steps, const QString& file)
{
    const QString folder = QFileInfo(file).path();
    const int renamed = steps.indexOf(QRegExp("\\d+ rename .* -> " + QRegExp::escape(file)));
    return renamed > 0 && steps.at(renamed - 1).contains(" fsync ")
        && steps.indexOf(QRegExp("\\d+ fsync " + QRegExp::escape(folder)), renamed) > renamed;
}

// The report without the time it was written at, which differs from run to run.
QByteArray timeless(QByteArray report)
{
    const QRegExp savedAt("Saved:</td><td>[^<]*");
    return QString::fromLatin1(report).replace(savedAt, "Saved:</td><td>").toLatin1();
}

} // namespace

class TestSaveCrash : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup() { m_root.reset(); }
    void startUpSave_data();
    void startUpSave();
    void reportExport_data();
    void reportExport();
    void failedExportLeavesNothing_data();
    void failedExportLeavesNothing();

private:
    // Runs `program` in the root with the crash library, killed at the `at`th step below `dir`
    // (0: at none). Without a kill it runs until it ends, or until `untilLine` is on its output.
    CrashRun run(const QString& program, const QStringList& arguments, const QString& dir, int at,
                 const QByteArray& untilLine = QByteArray());

    std::unique_ptr<TestDeviceRoot> m_root;
};

void TestSaveCrash::init()
{
    m_root.reset(new TestDeviceRoot);
    QVERIFY(m_root->isValid());
}

CrashRun TestSaveCrash::run(const QString& program, const QStringList& arguments,
                            const QString& dir, int at, const QByteArray& untilLine)
{
    const QString log = m_root->file("/crash-steps");
    QFile::remove(log);
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    const QString preload = env.value("LD_PRELOAD");
    env.insert("LD_PRELOAD", CRASH_AT_LIBRARY + (preload.isEmpty() ? "" : " " + preload));
    env.insert("CRASH_AT_DIR", m_root->file(dir));
    env.insert("CRASH_AT", QString::number(at));
    env.insert("CRASH_AT_LOG", log);
    env.insert("OPM_TEST_DEVICE_ROOT", m_root->path());
    // The library comes before the sanitizers' run-time, which would otherwise refuse to start.
    env.insert("ASAN_OPTIONS", env.value("ASAN_OPTIONS") + ":verify_asan_link_order=0");
    QProcess process;
    process.setProcessEnvironment(env);
    process.setWorkingDirectory(m_root->path());
    process.setStandardErrorFile(m_root->file("/crash-stderr"));
    process.start(program, arguments);
    CrashRun result = { false, QStringList() };
    if (!process.waitForStarted(30000))
        return result;
    QByteArray output;
    QElapsedTimer waited;
    waited.start();
    while (process.state() == QProcess::Running && waited.elapsed() < 120000
           && (untilLine.isEmpty() || !output.contains(untilLine))) {
        process.waitForReadyRead(1000);
        output += process.readAllStandardOutput();
    }
    if (process.state() == QProcess::Running) {
        process.kill();
        process.waitForFinished(30000);
    } else {
        result.killed = process.exitStatus() == QProcess::CrashExit;
    }
    const QByteArray steps = m_root->readFile("/crash-steps");
    result.steps = QString::fromLocal8Bit(steps).split('\n');
    result.steps.removeAll(QString());
    return result;
}

void TestSaveCrash::startUpSave_data()
{
    addColumns<QByteArray>("leftCopy");
    addRow("stored setup", QByteArray());
    // A copy that a crash left with other values must neither be read nor stay.
    addRow("with a crash's copy", QByteArray("[COpmSetup]\nWavelength=850\nUNIT=dB\n"));
}

// Ended at each step of the start-up save, the program leaves the stored setup whole, as it was
// written or as the start rewrote it, and the next start restores every value of it.
void TestSaveCrash::startUpSave()
{
    QFETCH(QByteArray, leftCopy);
    QStringList arguments;
#ifdef Q_WS_QWS
    arguments << "-qws";
#endif
    const QString program = STAND_ALONE_PATH;
    const QString copy = kSettingFile + ".new-1-1";
    QVERIFY(m_root->writeFile(kSettingFile, kStoredSetup));
    const CrashRun whole = run(program, arguments, kSettingDir, 0, kStartSaved);
    const QByteArray rewritten = m_root->readFile(kSettingFile);
    QCOMPARE(setupLines(rewritten), setupLines(kStoredSetup));
    QVERIFY2(madeDurable(whole.steps, m_root->file(kSettingFile)),
             qPrintable(whole.steps.join("; ")));

    bool oldSeen = false, newSeen = false;
    for (int at = 1; at <= whole.steps.size(); ++at) {
        const QString step = whole.steps.at(at - 1);
        QVERIFY(m_root->writeFile(kSettingFile, kStoredSetup));
        QVERIFY(leftCopy.isEmpty() || m_root->writeFile(copy, leftCopy));
        QVERIFY2(run(program, arguments, kSettingDir, at, kStartSaved).killed, qPrintable(step));
        const QByteArray left = m_root->readFile(kSettingFile);
        oldSeen |= left == kStoredSetup;
        newSeen |= left == rewritten;
        QVERIFY2(left == kStoredSetup || left == rewritten,
                 qPrintable(step + " left: " + QString::fromLatin1(left)));

        StdoutCapture trace;
        COpmSetupConfig nextStart;
        trace.take();
        QCOMPARE(nextStart.mreference1550, QString("-12.402"));
        QCOMPARE(setupLines(m_root->readFile(kSettingFile)), setupLines(kStoredSetup));
        QCOMPARE(leftCopies(*m_root), QString());
    }
    QVERIFY(oldSeen && newSeen);
}

void TestSaveCrash::reportExport_data()
{
    addColumns<QByteArray>("before");
    addRow("new name", QByteArray());
    addRow("over a report of that name", QByteArray("<html>an earlier report</html>"));
}

// Ended at each step of an export, the report's name holds the report from before (or nothing)
// or the whole new one, never a part.
void TestSaveCrash::reportExport()
{
    QFETCH(QByteArray, before);
    const QString program = REPORT_EXPORT_PATH;
    const QStringList arguments(m_root->file(kReport));
    QVERIFY(QDir().mkpath(m_root->file(kResultDir)));
    const CrashRun whole = run(program, arguments, kResultDir, 0);
    const QByteArray report = m_root->readFile(kReport);
    QVERIFY(report.endsWith("</body>\n</html>"));
    QVERIFY2(madeDurable(whole.steps, m_root->file(kReport)), qPrintable(whole.steps.join("; ")));

    bool oldSeen = false, newSeen = false;
    for (int at = 1; at <= whole.steps.size(); ++at) {
        const QString step = whole.steps.at(at - 1);
        QFile::remove(m_root->file(kReport));
        QVERIFY(before.isEmpty() || m_root->writeFile(kReport, before));
        QVERIFY2(run(program, arguments, kResultDir, at).killed, qPrintable(step));
        const QByteArray left = m_root->readFile(kReport);
        oldSeen |= left == before;
        newSeen |= timeless(left) == timeless(report);
        QVERIFY2(left == before || timeless(left) == timeless(report),
                 qPrintable(step + QString(" left %1 bytes").arg(left.size())));
    }
    QVERIFY(oldSeen && newSeen);
}

void TestSaveCrash::failedExportLeavesNothing_data()
{
    addColumns<QString, QString>("name taken");
    addRow("into no folder", kResultDir + "/gone/route-7.html", QString());
    addRow("name held by a folder", kReport, kReport + "/kept");
    addRow("folder replaced by a file", kResultDir + "/taken/route-7.html", kResultDir + "/taken");
}

// An export that cannot be made returns false, leaves what held the name and no part of itself.
void TestSaveCrash::failedExportLeavesNothing()
{
    QFETCH(QString, name);
    QFETCH(QString, taken);
    QVERIFY(QDir().mkpath(m_root->file(kResultDir)));
    QVERIFY(taken.isEmpty() || m_root->writeFile(taken, "kept"));
    halmanager::PlatE2PromServ eeprom(m_root->path().toStdString());
    const bool exported =
        opmExportReport(QFile::encodeName(m_root->file(name)), std::list<Result>(), eeprom);
    QCOMPARE(exported, false);
    QCOMPARE(m_root->readFile(taken.isEmpty() ? name : taken),
             QByteArray(taken.isEmpty() ? "" : "kept"));
    QCOMPARE(QDir(m_root->file(kResultDir)).entryList(QStringList("*.part")), QStringList());
    QVERIFY(!QFile::exists(m_root->file(name + ".part")));
}

int main(int argc, char** argv)
{
    // No GUI of its own: the program it runs is the window (a server of its own on the set).
    QCoreApplication app(argc, argv);
    TestSaveCrash test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_savecrash.moc"
