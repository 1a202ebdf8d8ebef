// Faults the page survives. The power reader going away while the page runs: the simulated one,
// installed at the reader's path of the test's own root and started by the main page as the set
// starts it. The settings file and its folder unusable at the start or taken away while the page
// runs. A crash or a power cut at every step of a save: the setup's save at the start and a report
// export, each made once whole and then once per step in a child of this process that is ended with
// SIGKILL at that step; what they leave is then read as the next start or the operator would. The
// steps are the writes, fsyncs and renames below the folder the save goes into, taken here: this
// program's own write(), fsync() and rename() stand before the C library's for the product code and
// for Qt. The report's writes go through stdio, which calls the library's own write(): they are not
// steps, and a report written under its own name is still told by the crash at its fsync, which
// leaves the new report where the old one must still be. An export that cannot be made.
#include "opm.h"
#include "opmDataEngine.h"
#include "opmPageProbe.h"
#include "opmReport.h"
#include "opmSetupConfig.h"
#include "plate2promserv.h"

#include <QDir>
#include <QFileInfo>
#include <QRegExp>

#include <csignal>
#include <cstring>
#include <list>
#include <string>

#include <dlfcn.h>
#include <limits.h>
#include <sys/wait.h>
#include <unistd.h>

using P = OpmPageProbe;

namespace {

// While a save runs: the folder whose files count, as the product names it and as the kernel
// does (no symbolic links); the step to be killed at (0: none); the steps so far.
char g_dir[PATH_MAX] = "";
char g_realDir[PATH_MAX] = "";
int g_at = 0;
QStringList g_steps;

template <typename F>
F next(const char* name)
{
    return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

bool isBelow(const char* dir, const char* path)
{
    const size_t length = std::strlen(dir);
    return length > 0 && std::strncmp(path, dir, length) == 0
        && (path[length] == '/' || path[length] == '\0');
}

bool counts(const char* path) { return isBelow(g_dir, path) || isBelow(g_realDir, path); }

std::string pathOf(int fd)
{
    char path[PATH_MAX];
    const ssize_t length =
        readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), path, sizeof path - 1);
    return std::string(path, length > 0 ? size_t(length) : 0);
}

// Notes a call on a file below the folder (a rename by the file it takes: the product renames
// only within a folder); the one to be killed at never happens.
void step(const char* call, const std::string& path)
{
    if (!counts(path.c_str()))
        return;
    g_steps
        << QString("%1 %2 %3").arg(g_steps.size() + 1).arg(call, QFile::decodeName(path.c_str()));
    if (g_steps.size() == g_at)
        raise(SIGKILL);
}

} // namespace

extern "C" {

ssize_t write(int fd, const void* data, size_t size)
{
    step("write", pathOf(fd));
    return next<ssize_t (*)(int, const void*, size_t)>("write")(fd, data, size);
}

int fsync(int fd)
{
    step("fsync", pathOf(fd));
    return next<int (*)(int)>("fsync")(fd);
}

int rename(const char* from, const char* to)
{
    step("rename", std::string(from) + " -> " + to);
    return next<int (*)(const char*, const char*)>("rename")(from, to);
}

} // extern "C"

namespace {

// Generous: other suites may be running beside this one on a small machine.
const int kWaitMs = 20000;

// What the page shows of a live reading in dBm.
bool isReading(const QString& label) { return QRegExp("-?\\d+\\.\\d{3} dBm").exactMatch(label); }

// The main page shown, the simulated reader running and the Setup tab polling it once a second.
struct LivePage
{
    bool start()
    {
        if (!fx.root.installReader(LUMENPROBE_PATH))
            return false;
        main.reset(new COpmMainPage);
        main->setGeometry(141, 61, 658, 398);
        main->show();
        setup = OpmPageProbe::setupTab(main.get());
        for (int waited = 0; !isReading(OpmPageProbe::reading(setup)) && waited < kWaitMs;
             waited += 10)
            QTest::qWait(10);
        return isReading(OpmPageProbe::reading(setup)) && fx.root.readersSettleAt(1);
    }
    OpmShareRecord* record() { return fx.reader.record(); }

    PageFixture fx { QByteArray(), false };
    std::unique_ptr<COpmMainPage> main;
    NerioOpm* setup = nullptr;
};

const QString kSettingFile = "/home/Setting/opmSetup.conf";
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

// Whether the steps make `file` durable: its new contents synced before the rename that puts
// them in place, its folder (named as the kernel names it) synced after it.
bool madeDurable(const QStringList& steps, const QString& file, const QString& folder)
{
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

class TestFaults : public QObject
{
    Q_OBJECT
private slots:
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
        LivePage live;
        QVERIFY(live.start());

        QVERIFY(live.record()->pid > 0);
        QCOMPARE(::kill(pid_t(live.record()->pid), signal), 0);
        QVERIFY(live.fx.root.readersSettleAt(0));
        QCOMPARE(live.record()->flag, flag);

        QSignalSpy ticks(P::timer(live.setup), SIGNAL(timeout()));
        OPM_TRY_VERIFY(ticks.count() >= 1, kWaitMs);
        const QString label = P::reading(live.setup);
        OPM_TRY_VERIFY(ticks.count() >= 3, kWaitMs);
        QCOMPARE(P::reading(live.setup), label);
        QVERIFY2(isReading(label), qPrintable(label));
        QCOMPARE(P::readingColour(live.setup), colour);
        QCOMPARE(P::timer(live.setup)->interval(), 1000);
        QCOMPARE(live.fx.closer.count(), 0);
    }
    // The plug-in's start kills the reader and starts another: the page follows the new one, which
    // in turn follows the page's choice of wavelength; the reader's save key saves its reading.
    void readerRestarted()
    {
        LivePage live;
        QVERIFY(live.start());
        const int32_t first = live.record()->pid;
        live.main->enterInit();
        OPM_TRY_VERIFY(live.record()->pid != first && live.record()->flag == OpmFlagReading,
                       kWaitMs);
        QVERIFY(live.fx.root.readersSettleAt(1));

        P::choose(live.setup, P::Wave, 3);
        OPM_TRY_COMPARE(P::waveLength(live.setup), 3, kWaitMs);
        // A tick may catch the reader between its wavelength and its value; a later one shows the
        // single-mode reading.
        OPM_TRY_VERIFY(QRegExp("-[3-7]\\.\\d{3} dBm").exactMatch(P::reading(live.setup)), kWaitMs);

        QCOMPARE(::kill(pid_t(live.record()->pid), SIGUSR1), 0);
        OPM_TRY_COMPARE(PageFixture::stored(), 1, kWaitMs);
        QCOMPARE(CBrovaOpmDataEngine::getSingleInstance()->getLastResultItem().waveLenth, "1550");
        OPM_TRY_COMPARE(live.record()->needSave, 0, kWaitMs);
        QCOMPARE(live.fx.closer.count(), 0);
    }
    void settingsLost_data()
    {
        // atStart: else while the page runs
        // blocked: taken away, a folder with all it holds
        // blocker: put in its place: a "file", a "folder" or "binary" bytes
        // fails: the changes cannot be kept
        addColumns<bool, QString, QString, bool>("atStart blocked blocker fails");

        addRow("binary file at start", true, kSettingFile, "binary", false);
        addRow("folder is a file at start", true, "/home/Setting", "file", true);
        addRow("home is a file at start", true, "/home", "file", true);
        addRow("file deleted", false, kSettingFile, "", false);
        addRow("folder deleted", false, "/home/Setting", "", false); // made again on writing
        addRow("file is a folder", false, kSettingFile, "folder", true);
        addRow("folder is a file", false, "/home/Setting", "file", true);
        addRow("home is a file", false, "/home", "file", true);
    }
    // No key of the setup can be read: the page goes on with the defaults, and with its changes in
    // memory where they cannot be kept. A failure is traced once, not on every change, a file in
    // the way is left alone, and once the way is clear again the next change writes everything the
    // page holds.
    void settingsLost()
    {
        QFETCH(bool, atStart);
        QFETCH(QString, blocked);
        QFETCH(QString, blocker);
        QFETCH(bool, fails);

        PageFixture fx(QByteArray(), !atStart);
        QFile::remove(fx.root.file(kSettingFile));
        TestCompat::removeRecursively(fx.root.file(blocked));
        QByteArray content("in the way");
        if (blocker == "binary") { // NULs, high bytes, brackets, quotes, equals signs
            content = "[COpmSetup]\n";
            for (int i = 0; i < 4096; ++i)
                content.append(char(i * 37 + i / 256));
        }
        const QString path = blocked + (blocker == "folder" ? "/x" : "");
        QVERIFY(blocker.isEmpty() || fx.root.writeFile(path, content));

        StdoutCapture capture;
        if (atStart)
            fx.buildPage();
        P::choose(fx.page, P::Wave, 3);
        P::click(fx.page, P::MW);
        fx.show("1550", "-12.347");
        const QByteArray trace = capture.take();
        QCOMPARE(trace.count("COpmSetupConfig cannot write "), fails ? 1 : 0);
        QCOMPARE(fx.reader.record()->wavelenthTarget, 3);
        QCOMPARE(P::reading(fx.page), QString("0.058251 mW"));
        QCOMPARE(fx.closer.count(), 0);
        if (fails)
            QCOMPARE(fx.root.readFile(path), content);
        else // a garbled file is replaced by the setup and what could be read of it
            QCOMPARE(storedValue("Wavelength") + ' ' + storedValue("UNIT") + ' '
                         + storedValue("TestMode"),
                     QString("1550 mW PowerMeter"));
        QCOMPARE(storedSetup().size() >= 13, !fails);

        // The way cleared: whatever sits at the taken path goes, the folder is back.
        QFile::remove(fx.root.file(blocked));
        TestCompat::removeRecursively(fx.root.file(blocked));
        QVERIFY(QDir().mkpath(fx.root.file("/home/Setting")));
        P::click(fx.page, P::Limits);
        QCOMPARE(storedSetup().size(), 13);
        QCOMPARE(storedValue("Wavelength") + ' ' + storedValue("UNIT") + ' '
                     + storedValue("PowerLimit") + ' ' + storedValue("TestMode"),
                 QString("1550 mW enable PowerMeter"));
    }
    void everyStep_data()
    {
        // file: the setup saved at the start, or the report exported
        // before: what it holds before the run (null: no file)
        addColumns<QString, QByteArray>("file before");
        addRow("stored setup", kSettingFile, kStoredSetup);
        addRow("new report", kReport, QByteArray());
        addRow("over a report of that name", kReport, QByteArray("<html>an earlier report</html>"));
    }
    // Ended at each step of the save, the program leaves the file as it was before (or no file) or
    // whole as it writes it, never a part; after the start-up save the next start restores every
    // value of the setup and takes away any copy the crash left.
    void everyStep()
    {
        QFETCH(QString, file);
        QFETCH(QByteArray, before);
        const TestDeviceRoot root;
        QVERIFY(root.isValid());
        const bool setup = file == kSettingFile;
        const QString dir = QFileInfo(file).path();
        QVERIFY(QDir().mkpath(root.file(dir)));
        QVERIFY(before.isNull() || root.writeFile(file, before));
        save(root, file);
        const QStringList steps = g_steps;
        const QByteArray written = root.readFile(file);
        QVERIFY(setup ? setupLines(written) == setupLines(kStoredSetup)
                      : written.endsWith("</body>\n</html>"));
        QVERIFY2(madeDurable(steps, root.file(file), QDir(root.file(dir)).canonicalPath()),
                 qPrintable(steps.join("; ")));

        bool oldSeen = false, newSeen = false;
        for (int at = 1; at <= steps.size(); ++at) {
            QFile::remove(root.file(file));
            QVERIFY(before.isNull() || root.writeFile(file, before));
            QVERIFY2(save(root, file, at), qPrintable(steps.at(at - 1)));
            const QByteArray left = root.readFile(file);
            oldSeen |= left == before;
            newSeen |= timeless(left) == timeless(written);
            QVERIFY2(left == before || timeless(left) == timeless(written),
                     qPrintable(steps.at(at - 1) + " left: " + QString::fromLatin1(left)));
            if (!setup)
                continue;
            save(root, file);
            QCOMPARE(setupLines(root.readFile(kSettingFile)), setupLines(kStoredSetup));
            QCOMPARE(QDir(root.file(dir)).entryList(QStringList("opmSetup.conf.*"), QDir::Files),
                     QStringList());
        }
        QVERIFY(oldSeen && newSeen);
    }
    void failedExportLeavesNothing_data()
    {
        addColumns<QString, QString>("name taken");
        // Into no folder at all: tst_results' exports / "slash into no folder".
        addRow("name held by a folder", kReport, kReport + "/kept");
        addRow("folder replaced by a file", kReport + "/route-7.html", kReport);
    }
    // An export that cannot be made returns false, leaves what held the name and no part of itself.
    void failedExportLeavesNothing()
    {
        QFETCH(QString, name);
        QFETCH(QString, taken);
        const TestDeviceRoot root;
        QVERIFY(root.isValid());
        QVERIFY(root.writeFile(taken, "kept"));
        halmanager::PlatE2PromServ eeprom(root.path().toStdString());
        const bool exported =
            opmExportReport(QFile::encodeName(root.file(name)), std::list<Result>(), eeprom);
        QCOMPARE(exported, false);
        QCOMPARE(root.readFile(taken), QByteArray("kept"));
        QVERIFY(!QFile::exists(root.file(name + ".part")));
    }

private:
    // The start-up save (file: the setup's) or an export into the root's `file`: made here, or
    // in a child killed at its `at`th step (whether it was). The steps are left in g_steps.
    bool save(const TestDeviceRoot& root, const QString& file, int at = 0);
};

bool TestFaults::save(const TestDeviceRoot& root, const QString& file, int at)
{
    const QByteArray dir = QFile::encodeName(QFileInfo(root.file(file)).path());
    qstrncpy(g_dir, dir.constData(), sizeof g_dir);
    if (!realpath(g_dir, g_realDir))
        g_realDir[0] = '\0';
    g_at = at;
    g_steps.clear();
    const pid_t child = at > 0 ? fork() : 0;
    if (child == 0) {
        StdoutCapture trace;
        halmanager::PlatE2PromServ eeprom(root.path().toStdString());
        const std::list<Result> results(CBrovaOpmDataEngine::kMaxResults, Result());
        if (file == kSettingFile)
            COpmSetupConfig start;
        else
            opmExportReport(QFile::encodeName(root.file(file)), results, eeprom);
        if (at > 0)
            _exit(0);
    }
    int status = 0;
    const bool killed = child > 0 && waitpid(child, &status, 0) == child && WIFSIGNALED(status)
        && WTERMSIG(status) == SIGKILL;
    g_dir[0] = g_realDir[0] = '\0';
    return killed;
}

QTEST_MAIN(TestFaults)
#include "tst_faults.moc"
