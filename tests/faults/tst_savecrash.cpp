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
    void everyStep_data();
    void everyStep();
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

void TestSaveCrash::everyStep_data()
{
    // file: the setup saved at the start, or the report exported
    // before: what it holds before the run (null: no file)
    // leftCopy: a copy of the setup that a crash left beside it
    addColumns<QString, QByteArray, QByteArray>("file before leftCopy");
    addRow("stored setup", kSettingFile, kStoredSetup, QByteArray());
    // A copy that a crash left with other values must neither be read nor stay.
    addRow("with a crash's copy", kSettingFile, kStoredSetup,
           QByteArray("[COpmSetup]\nWavelength=850\nUNIT=dB\n"));
    addRow("new report", kReport, QByteArray(), QByteArray());
    addRow("over a report of that name", kReport, QByteArray("<html>an earlier report</html>"),
           QByteArray());
}

// Ended at each step of the save, the program leaves the file as it was before (or no file) or
// whole as it writes it, never a part; after the start-up save the next start restores every
// value of the setup and no copy stays.
void TestSaveCrash::everyStep()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, leftCopy);
    const bool setup = file == kSettingFile;
#ifdef Q_WS_QWS
    const QStringList standAlone("-qws");
#else
    const QStringList standAlone;
#endif
    const QString program = setup ? STAND_ALONE_PATH : REPORT_EXPORT_PATH;
    const QStringList arguments = setup ? standAlone : QStringList(m_root->file(kReport));
    const QString dir = QFileInfo(file).path();
    const QByteArray until = setup ? kStartSaved : QByteArray();
    QVERIFY(QDir().mkpath(m_root->file(dir)));
    QVERIFY(before.isNull() || m_root->writeFile(file, before));
    const CrashRun whole = run(program, arguments, dir, 0, until);
    const QByteArray written = m_root->readFile(file);
    QVERIFY(setup ? setupLines(written) == setupLines(kStoredSetup)
                  : written.endsWith("</body>\n</html>"));
    QVERIFY2(madeDurable(whole.steps, m_root->file(file)), qPrintable(whole.steps.join("; ")));

    bool oldSeen = false, newSeen = false;
    for (int at = 1; at <= whole.steps.size(); ++at) {
        const QString step = whole.steps.at(at - 1);
        QFile::remove(m_root->file(file));
        QVERIFY(before.isNull() || m_root->writeFile(file, before));
        QVERIFY(leftCopy.isNull() || m_root->writeFile(kSettingFile + ".new-1-1", leftCopy));
        QVERIFY2(run(program, arguments, dir, at, until).killed, qPrintable(step));
        const QByteArray left = m_root->readFile(file);
        oldSeen |= left == before;
        newSeen |= timeless(left) == timeless(written);
        QVERIFY2(left == before || timeless(left) == timeless(written),
                 qPrintable(step + " left: " + QString::fromLatin1(left)));
        if (!setup)
            continue;
        StdoutCapture trace;
        COpmSetupConfig nextStart;
        trace.take();
        QCOMPARE(nextStart.mreference1550, QString("-12.402"));
        QCOMPARE(setupLines(m_root->readFile(kSettingFile)), setupLines(kStoredSetup));
        const QDir folder(m_root->file(dir));
        QCOMPARE(folder.entryList(QStringList("opmSetup.conf.*"), QDir::Files | QDir::Hidden),
                 QStringList());
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
