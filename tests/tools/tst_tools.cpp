// The tools the suites, the demo and a reader's maker run, as the programs they are. The
// simulated reader in a device root of the test's own (also its working folder, which decides
// the shared record): its start without a wavelength asked for, and a scenario file no one should
// write; its live reading, save key, following the page and end are tst_faults', a
// well-formed scenario the demo's. The shell stand-in: it refuses a plug-in file whose
// verification text is not the set's, or that is cut short, and takes the demo plug-in. The
// record tool: "opmrecord check", as a reader's maker runs it: the simulated reader keeps the
// contract; each broken reader fails the check of the rule it breaks and no other; a reader that
// cannot start or dies at once ends the check with a clear message; checks running at once never
// share a record key. The trend log and chart: the figures of a stability test from a log with
// known readings among lines to skip, and what "opmrecord log" refuses; "opmrecord log" against a
// record written here (hostile texts, an append after a cut row, the end on a signal or after its
// duration); "opmrecord chart" as a picture whose line breaks where readings are missing.
#include "checkedReader.h"
#include "opmShareRecord.h"
#include "testSupport.h"
#include "trendChart.h"
#include "trendCsv.h"

#include <QImage>
#include <QtTest>

#include <csignal>
#include <cstring>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <sys/stat.h>

#if QT_VERSION < 0x050000
#define processId pid
#endif

namespace {

struct Reader
{
    const char* tag;
    const char* program;
    const char* rule; // brokenReader --break RULE
    const char* failed; // the checks that fail, by name
    const char* said; // in what the check prints
    int status;
};

const char kOne[] = "11 checks: 10 passed, 1 failed, 0 not run";
const char kBroken[] = BROKENREADER_PATH;

const Reader kReaders[] = {
    { "simulated reader", LUMENPROBE_PATH, "", "", "11 checks: 11 passed, 0 failed, 0 not run", 0 },
    { "wrong key", kBroken, "wrong-key", "key", "0 passed, 1 failed, 10 not run", 1 },
    { "segment of 64 bytes", kBroken, "small-segment", "segment", kOne, 1 },
    { "deviceType without NUL", kBroken, "no-nul", "text-ends", kOne, 1 },
    { "wavelength with its unit", kBroken, "wavelength-unit", "wavelength", kOne, 1 },
    { "unit in lower case", kBroken, "unit-case", "unit", kOne, 1 },
    { "decimal comma", kBroken, "comma-value", "value", kOne, 1 },
    { "flag 3", kBroken, "flag-3", "flag", kOne, 1 },
    { "a reading every 2.5 s", kBroken, "slow", "reading-rate", kOne, 1 },
    // Without a wavelength followed there is no retune time to judge.
    { "ignores the target", kBroken, "ignores-target", "follows-target",
      "9 passed, 1 failed, 1 not", 1 },
    { "retunes in 3 s", kBroken, "slow-retune", "retune-time", kOne, 1 },
    { "clears the page's request", kBroken, "clears-save", "needSave", kOne, 1 },
    { "requests saves unasked", kBroken, "saves-unasked", "needSave", kOne, 1 },
    { "dies at once", kBroken, "dies-at-once", "key",
      "(status 3) before it made the segment of its folder's key; it printed: brokenReader: "
      "optical module not found",
      1 },
    { "never starts", "/nonexistent/lumenProbe", "", "",
      "opmrecord check: cannot start \"/nonexistent/lumenProbe\": No such file or directory", 2 },
};

// "log trend.csv --interval 20": the arguments of one run, blank between.
QStringList args(const char* words) { return QString::fromLatin1(words).split(' '); }

QByteArray header() { return QByteArray(TrendCsv::kHeader) + '\n'; }

// The stretches of the image's columns that hold a pixel of the colour, more than five columns
// between two.
int stretchesOf(const QImage& image, QRgb colour)
{
    int stretches = 0;
    for (int x = 0, last = -10; x < image.width(); ++x) {
        int y = 0;
        while (y < image.height() && image.pixel(x, y) != colour)
            ++y;
        if (y < image.height()) {
            stretches += x - last > 6;
            last = x;
        }
    }
    return stretches;
}

// As where folders' keys repeat most: two keys for every folder there is.
key_t oneOfTwoKeys(const char* folder)
{
    struct stat info;
    return stat(folder, &info) == 0 ? key_t(0x7e000000 | (info.st_ino & 1)) : key_t(-1);
}

} // namespace

class TestTools : public QObject
{
    Q_OBJECT
private slots:
    // Before the page has asked for a wavelength (the target not one of the five), the live reader
    // measures at 850 nm.
    void startsAt850WithoutTarget()
    {
        TestDeviceRoot root;
        RecordWriter writer;
        QVERIFY(writer.isAttached());
        writer.record()->wavelenthTarget = 42;
        QProcess probe;
        probe.setWorkingDirectory(root.path());
        probe.start(LUMENPROBE_PATH, QStringList());
        OPM_TRY_COMPARE(writer.record()->flag, int32_t(OpmFlagReading), 20000);
        QCOMPARE(QByteArray(writer.record()->wavelenth), QByteArray("850"));
        probe.kill();
        probe.waitForFinished(20000);
    }
    // After a good first line, every kind of bad line: longer than 1024 characters, an unknown
    // field, a NUL in a text, control characters, an unclosed quote, binary bytes with a NUL, a
    // time out of range. Each is skipped with a message, so the first line's reading stays; an
    // overlong text is cut to its field with the NUL inside; at its end the reader says "no
    // reading".
    void survivesHostileScenario()
    {
        TestDeviceRoot root;
        RecordWriter writer;
        const OpmShareRecord* r = writer.record();
        const QByteArray lines =
            "0 deviceType=ABCDEFGHIJKLMNOPQRSTUVWXYZ value=-1.00 flag=1\n400 value="
            + QByteArray(5000, '9')
            + "\n400 colour=red value=2\n400 value=\"1\\x002\"\n400 value=\x01\x1b[2J\n"
              "400 value=\"-1.5\n"
            + QByteArray("400 value=\xe9\0\x9f\n", 14) + "99999999999 value=3\n400 end\n";
        QVERIFY(root.writeFile("/scenario.txt", lines));

        QProcess probe;
        probe.setWorkingDirectory(root.path());
        probe.start(LUMENPROBE_PATH, QStringList() << "--scenario" << root.file("/scenario.txt"));
        QVERIFY(probe.waitForFinished(20000));
        QCOMPARE(probe.exitStatus(), QProcess::NormalExit);
        QCOMPARE(probe.exitCode(), 0);
        const QByteArray errors = probe.readAllStandardError();
        QCOMPARE(errors.count("line skipped"), 7);
        QCOMPARE(errors.count(", cut"), 1);
        QCOMPARE(QByteArray(r->value) + '|' + QByteArray::number(r->flag) + '|'
                     + QByteArray(r->deviceType, int(strnlen(r->deviceType, 16))),
                 QByteArray("-1.00|0|ABCDEFGHIJKLMNO"));
    }
    void plugins_data()
    {
        addColumns<QString, int, QString>("plugin status said");
        addRow("older Qt", FAKE_PLUGIN_WRONGVERSION, 1,
               "refused: verification section refused: Qt version \"4.7.0\" is not \"4.8.4\"");
        addRow("other build key", FAKE_PLUGIN_WRONGBUILDKEY, 1,
               "refused: verification section refused: build key \"x86_64 linux");
        addRow("copies differ", FAKE_PLUGIN_SECTIONDIFFERS, 1,
               "refused: the verification data and the .qtplugin section differ");
        addRow("cut short", m_dir.path() + "/cut.so", 1, "outside the file");
        addRow("demo plug-in", DEMO_PLUGIN_PATH, 0, "opmshell: loaded");
    }
    // The shell stand-in refuses a plug-in that the set's shell would refuse, saying why, and takes
    // the demo plug-in.
    void plugins()
    {
        QFETCH(QString, plugin);
        QFETCH(int, status);
        QFETCH(QString, said);
        // The demo plug-in without its second half, where the section table lies.
        if (plugin.endsWith("/cut.so"))
            QVERIFY(QFile::copy(DEMO_PLUGIN_PATH, plugin)
                    && QFile::resize(plugin, QFileInfo(plugin).size() / 2));

        const ProgramRun shell = runProgram(OPMSHELL_PATH,
                                            QStringList() << "--plugin" << plugin << "--quit-after"
                                                          << "0.2",
                                            m_dir.path());
        QCOMPARE(shell.status, status);
        QVERIFY2((shell.out + shell.err).contains(said.toLatin1()), shell.err.constData());
    }

    // The checks take seconds each, mostly waiting: all run at once, each in its own folder. Local
    // time half an hour off whole hours, west of UTC: the trend log's times carry their offset.
    void initTestCase()
    {
        qputenv("TZ", "NST+3:30");
        for (const Reader& reader : kReaders) {
            QStringList args = QStringList()
                << "check"
                << "--junit" << m_junit.path() + '/' + reader.tag + ".xml";
            args << "--" << reader.program;
            if (*reader.rule)
                args << "--break" << reader.rule;
            QProcess* check = new QProcess(this);
            check->start(OPMRECORD_PATH, args);
            m_checks.insert(reader.tag, check);
        }
    }
    void verdicts_data()
    {
        addColumns<QString, QString, int>("failed said status");
        for (const Reader& reader : kReaders)
            addRow(reader.tag, reader.failed, reader.said, reader.status);
    }
    void verdicts()
    {
        QFETCH(QString, failed);
        QFETCH(QString, said);
        QFETCH(int, status);
        QProcess* check = m_checks.value(QTest::currentDataTag());
        // Already done when an earlier test ran the event loop.
        QVERIFY(check->state() == QProcess::NotRunning || check->waitForFinished(120000));
        const QString output =
            QString::fromLocal8Bit(check->readAllStandardOutput() + check->readAllStandardError());
        // The summary first: when a verdict is wrong, the whole output is in the message.
        QVERIFY2(output.contains(said), qPrintable(output));
        QStringList failures;
        foreach (const QString& line, output.split('\n').filter(QRegExp("^FAIL ")))
            failures << line.section(' ', 2, 2);
        QCOMPARE(failures.join(","), failed);
        QCOMPARE(check->exitCode(), status);
    }
    // A check that failed and one not run, and texts of the reader's that XML must escape.
    void junitNamesTheFailure()
    {
        QFile file(m_junit.path() + "/ignores the target.xml");
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray xml = file.readAll();
        QVERIFY2(xml.contains("<testsuite name=\"opmrecord check\" tests=\"11\" failures=\"1\" "
                              "skipped=\"1\">"),
                 xml.constData());
        QCOMPARE(xml.count("<failure "), 1);
        QVERIFY(
            xml.contains("name=\"follows-target\">\n      <failure message=\"1310 nm (target 1) "
                         "not reported within 5000 ms; wavelenth stayed &quot;850&quot;\"/>"));
        QVERIFY(xml.contains("name=\"retune-time\">\n      <skipped message=\"needs a reader"));
    }
    void scratchKeysAreNeverShared()
    {
        // Scratch folders and claims in a folder of the test's own (the checks above have ended),
        // until the test ends: the device roots of later tests claim their keys in the usual one.
        TestCompat::TempDir tmp;
        struct TmpDir
        {
            const QByteArray usual = qgetenv("TMPDIR");
            ~TmpDir() { qputenv("TMPDIR", usual); }
        } restored;
        qputenv("TMPDIR", QFile::encodeName(tmp.path()));
        std::string error;

        std::unique_ptr<CheckedReader> first(new CheckedReader(oneOfTwoKeys));
        QVERIFY(first->prepare(&error));
        const key_t firstKey = first->key();
        CheckedReader second(oneOfTwoKeys);
        QVERIFY(second.prepare(&error));
        CheckedReader third(oneOfTwoKeys);
        QVERIFY(!third.prepare(&error));
        QCOMPARE(QString::fromStdString(error), QString("no scratch folder with a key of its own"));
        // The folders passed over are gone.
        QCOMPARE(QDir(tmp.path(), "opmrecord-check-*").count(), 2u);

        first.reset();
        // A segment that no check made holds its key as well, as a running page's does.
        const int segment = shmget(firstKey, 64, IPC_CREAT | IPC_EXCL | 0600);
        QVERIFY(segment != -1);
        const bool heldBySegment = !third.prepare(&error);
        shmctl(segment, IPC_RMID, nullptr);
        QVERIFY(heldBySegment);
        QVERIFY(third.prepare(&error));
        QCOMPARE(third.key(), firstKey);
    }
    // The statistics: readings 0, 7.25, 19.5, 30.75 and 44 s from the first, written in three UTC
    // offsets: mean -4.4954, sample std 0.026941 (population 0.024096), slope 1.306585 dB/h.
    // Between them rows without a dBm reading, and lines that are no row, each of which would be a
    // reading of -9.99; one reading of a quoted wavelength. What the log refuses, it refuses before
    // it writes anything.
    void runs_data()
    {
        addColumns<QStringList, bool, QByteArray, int, QString>(
            "arguments segment file status said");
        const QByteArray bad = "2026-03-14T09:27:01.000+01:00,1550,dBm,-9.99,-9.99,1,0\n";
        QByteArray log = header()
            + "2026-03-14T09:26:53.000+01:00,1550,dBm,-4.51,-4.51,1,0\n"
              "2026-03-14T09:26:55.000+01:00,1550,dBm,---.--,,0,0\n"
              "2026-03-14T09:26:56.000+01:00,1550,dBm,---.--,,1,0\n"
              "2026-03-14T09:26:57.000+01:00,1550,dBm, -9.99,-9.99,2,0\n"
              "2026-03-14T09:26:58.000+01:00,1550,dB,3.21,3.21,1,0\n"
              "2026-03-14T08:27:00.250Z,1550,dBm,-4.48,-4.48,1,0\n"
              "2026-03-14T09:27:12.500+01:00,1550,dBm,-4.53,-4.53,1,0\n"
              "2026-03-14T03:27:23.750-05:00,1550,dBm,-4.46,-4.46,1,0\n"
              "2026-03-14T09:27:37.000+01:00,1550,dBm,-4.497,-4.497,1,0\n"
              "2026-03-14T09:27:38.000+01:00,\"1,5\"\"5\",dBm,-17.083,-17.083,1,0\n";
        const char* const breaks[][2] = {
            { "03-14", "02-29" },  { "03-14", "13-14" }, { "-9.99,1", "-9.99x,1" },
            { "+01:00", "+0100" }, { ".000", "" },       { "-9.99,1", "nan,1" },
            { ",1,0", ",1.5,0" },  { ",0\n", ",0,0\n" }, { ",1550,", ",\"1550," },
            { "dBm", "\xb5W" }
        };
        for (const auto& b : breaks)
            log += QByteArray(bad).replace(b[0], b[1]);
        log += QByteArray(bad).replace("dBm", QByteArray("d\0m", 3))
            + QByteArray(bad).replace("-9.99,1", "-9.99" + QByteArray(1100, ' ') + ",1");
        addRow("statistics", args("chart trend.csv --summary"), true, log, 0,
               "1550 nm: 5 readings over 0:00:44, min -4.530 max -4.460 mean -4.495 std 0.0269 dB, "
               "drift +1.3066 dB/h\n1,5\"5: 1 readings over 0:00:00, min -17.083 max -17.083 mean "
               "-17.083 std 0.0000 dB, drift +0.0000 dB/h\n10 rows, 4 without a reading in dBm\n"
               "opmrecord chart: 12 lines skipped (not a trend log row)\n");
        const QStringList plain = args("log trend.csv --duration 1");
        addRow("log: no segment", plain, false, QByteArray(), 1, "no shared segment");
        addRow("log: file exists", plain, true, QByteArray("kept\n"), 1, "--append");
        addRow("log: interval 19 ms", plain + args("--interval 19"), true, QByteArray(), 2,
               "bad interval");
        addRow("log: duration 0", args("log trend.csv --duration 0"), true, QByteArray(), 2,
               "bad duration");
        addRow("log: no file", args("log --append"), true, QByteArray(), 2, "no file");
    }
    // What the program prints on standard output, then error, holds said; the file is left as it
    // was.
    void runs()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, segment);
        QFETCH(QByteArray, file);
        QFETCH(int, status);
        QFETCH(QString, said);
        TestDeviceRoot root; // which holds a segment for its folder
        if (!segment)
            QCOMPARE(shmctl(shmget(ftok(".", 1), 0, 0), IPC_RMID, nullptr), 0);
        if (!file.isNull())
            QVERIFY(root.writeFile("/trend.csv", file));

        const ProgramRun run = runProgram(OPMRECORD_PATH, arguments, root.path());
        QCOMPARE(run.status, status);
        QVERIFY2((run.out + run.err).contains(said.toLatin1()), (run.out + run.err).constData());
        QCOMPARE(QFile::exists(root.file("/trend.csv")), !file.isNull());
        QCOMPARE(root.readFile("/trend.csv"), file);
    }
    // The record's texts as bytes (Latin-1), its flag, the row logged after the time, and how the
    // log ends (a signal, or 0: its duration).
    void logsRecord_data()
    {
        addColumns<QString, QString, QString, int, QString, int>(
            "wavelength unit value flag row end");
        addRow("reading, blanks around; SIGINT", "1310", "dBm", " -12.347 ", 1,
               "1310,dBm, -12.347 ,-12.347,1,1", int(SIGINT));
        addRow("reader ended; SIGTERM", "850", "dBm", "-11.83", 0, "850,dBm,-11.83,-11.83,0,1",
               int(SIGTERM));
        // Every field full without a NUL: a comma, a quote, a backslash, CR, LF, bytes >= 0x80.
        addRow("hostile, no NUL; duration",
               "1,\"\xb5\\\x01"
               "ab",
               "dBm\r\nxy\xff", "-12.5,0000000000", 1,
               "\"1,\"\"\\xb5\\x5c\\x01ab\",dBm\\x0d\\x0axy\\xff,\"-12.5,0000000000\",,1,1", 0);
    }
    // A log cut inside a row (the power went) goes on after it, without a second header, until the
    // signal or the end of its duration; then the summary line and status 0.
    void logsRecord()
    {
        QFETCH(QString, wavelength);
        QFETCH(QString, unit);
        QFETCH(QString, value);
        QFETCH(int, flag);
        QFETCH(QString, row);
        QFETCH(int, end);
        TestDeviceRoot root;
        RecordWriter writer;
        writer.setReading(wavelength.toLatin1().constData(), unit.toLatin1().constData(),
                          value.toLatin1().constData(), flag);
        writer.record()->needSave = 1; // a save the page asked for, which the log shows as it is
        const QByteArray cut = header() + "2026-11-25T14:03:07.125+01:00,1625,dB";
        QVERIFY(root.writeFile("/trend.csv", cut));
        QProcess process;
        process.setWorkingDirectory(root.path());
        process.start(OPMRECORD_PATH,
                      args(end ? "log trend.csv --interval 20 --append"
                               : "log trend.csv --interval 20 --append --duration 0.1"));
        OPM_TRY_VERIFY(!end || root.readFile("/trend.csv").count('\n') >= 4, 20000);
        if (end)
            ::kill(pid_t(process.processId()), end);
        QVERIFY(process.waitForFinished(20000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);

        const QList<QByteArray> lines = root.readFile("/trend.csv").split('\n');
        QCOMPARE(lines.at(0) + '\n' + lines.at(1), cut);
        const QByteArray first = lines.at(2);
        int64_t ms;
        int32_t offset;
        QVERIFY2(TrendCsv::parseTime(first.left(first.indexOf(',')).constData(), &ms, &offset),
                 first.constData());
        QCOMPARE(offset, -(3 * 3600 + 30 * 60));
        QVERIFY2(qAbs(ms - QDateTime::currentMSecsSinceEpoch()) < 60000, first.constData());
        QCOMPARE(QString::fromLatin1(first.mid(first.indexOf(',') + 1)), row);
        // A reading: flag 1 and a number.
        const int rows = lines.size() - 3, without = flag == 1 && !row.contains(",,") ? 0 : rows;
        const QString summary =
            "opmrecord log: %1 rows, %2 without a reading, from .* in trend.csv\n";
        const QString out = process.readAllStandardOutput();
        QVERIFY2(QRegExp(summary.arg(rows).arg(without)).exactMatch(out), qPrintable(out));
    }
    // Readings every half second at -4.50 dBm; in the third five seconds without a reading, in the
    // fifth missing, in the seventh at 1310 nm and -4.61 dBm (where a line bridging the gap would
    // show). The first series' line, in its colour, breaks three times; the second series is in its
    // own.
    void chart()
    {
        QString log = header();
        for (int i = 0; i < 80; ++i) {
            QString row = QString("2026-11-25T14:03:%1+01:00,1550,dBm,-4.50,-4.50,1,0\n")
                              .arg(10.125 + i * 0.5, 0, 'f', 3);
            if (i / 10 == 2)
                row.replace(",-4.50,-4.50,1,", ",---.--,,0,");
            if (i / 10 == 6)
                row.replace(",1550,dBm,-4.50,-4.50,", ",1310,dBm,-4.61,-4.61,");
            if (i / 10 != 4)
                log += row;
        }
        TestDeviceRoot root;
        QVERIFY(root.writeFile("/chart.csv", log.toLatin1()));

        QCOMPARE(
            runProgram(OPMRECORD_PATH, args("chart chart.csv -o chart.png"), root.path()).status,
            0);
        const QImage image(root.file("/chart.png"));
        QCOMPARE(image.size(), QSize(800, 480));
        // The first series' stretches start where the legend's does.
        QCOMPARE(stretchesOf(image, TrendChart::seriesColour(0)), 4);
        QCOMPARE(stretchesOf(image, TrendChart::seriesColour(1)), 2);
    }

private:
    QHash<QString, QProcess*> m_checks;
    TestCompat::TempDir m_junit;
    TestCompat::TempDir m_dir;
};

QTEST_MAIN(TestTools)
#include "tst_tools.moc"
