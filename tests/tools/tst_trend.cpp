// The inspector's trend log and chart, run as the programs they are: the figures of a stability
// test from a log with known readings among lines to skip; "opmrecord log" against a record
// written here (hostile texts, refusals, an append after a cut row, the end on a signal);
// "opmrecord chart" as a picture whose lines break where readings are missing.
#include "testSupport.h"
#include "trendChart.h"
#include "trendCsv.h"
#include "trendSeries.h"

#include <QDateTime>
#include <QImage>
#include <QProcess>
#include <QRegExp>
#include <QtTest>

#include <csignal>

#include <sys/ipc.h>
#include <sys/shm.h>

namespace {

// "log trend.csv --interval 20": the arguments of one run, blank between.
QStringList args(const char* words) { return QString::fromLatin1(words).split(' '); }

QByteArray header() { return QByteArray(TrendCsv::kHeader) + '\n'; }

// Sixty readings a second apart at -4.50 dBm, rows 20 to 39 changed as kind says.
QByteArray sixtySeconds(const QString& kind)
{
    QByteArray log = header();
    for (int i = 0; i < 60; ++i) {
        QByteArray row = "2026-11-25T14:03:" + QByteArray::number(i / 10)
            + QByteArray::number(i % 10) + ".125+01:00,1550,dBm,-4.50,-4.50,1,0\n";
        const bool middle = i >= 20 && i < 40;
        if (middle && kind == "no reading")
            row.replace(",-4.50,-4.50,1,", ",---.--,,0,");
        if (middle && kind == "other wavelength")
            row.replace(",1550,", ",1310,");
        if (!middle || kind != "missing")
            log += row;
    }
    return log;
}

// The columns of the image line with the most pixels of about the colour.
QList<int> densestLine(const QImage& image, QRgb colour)
{
    QList<int> densest;
    for (int y = 0; y < image.height(); ++y) {
        QList<int> columns;
        for (int x = 0; x < image.width(); ++x) {
            const QRgb c = image.pixel(x, y);
            if (qAbs(qRed(c) - qRed(colour)) + qAbs(qGreen(c) - qGreen(colour))
                    + qAbs(qBlue(c) - qBlue(colour))
                <= 24)
                columns << x;
        }
        if (columns.size() > densest.size())
            densest = columns;
    }
    return densest;
}

qint64 pidOf(const QProcess& process)
{
#if QT_VERSION >= 0x050000
    return process.processId();
#else
    return process.pid();
#endif
}

// The log run's summary line, against the rows it wrote.
void checkSummary(const QByteArray& out, int rows, int withoutReading)
{
    const QString line = "opmrecord log: %1 rows, %2 without a reading, from .* in trend.csv\n";
    QRegExp summary(line.arg(rows).arg(withoutReading));
    QVERIFY2(rows > 0 && summary.exactMatch(QString::fromLatin1(out)), out.constData());
}

} // namespace

class TestTrend : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void statistics_data();
    void statistics();
    void logsRecord_data();
    void logsRecord();
    void logRefuses_data();
    void logRefuses();
    void logAppendsUntilSignal_data();
    void logAppendsUntilSignal();
    void chart_data();
    void chart();
};

// Local time half an hour off whole hours, west of UTC: the log's times carry their offset.
void TestTrend::initTestCase() { qputenv("TZ", "NST+3:30"); }

// Readings 0, 7.25, 19.5, 30.75 and 44 s from the first, written in three UTC offsets: mean
// -4.4954, sample std 0.026941 (population 0.024096), slope 1.306585 dB/h. Between them rows
// without a dBm reading, and lines that are no row, each of which would be a reading of -9.99.
void TestTrend::statistics_data()
{
    addColumns<QByteArray, QString, QString>("log out err");
    const QByteArray bad = "2026-03-14T09:27:01.000+01:00,1550,dBm,-9.99,-9.99,1,0\n";
    const QByteArray log = "2026-03-14T09:26:53.000+01:00,1550,dBm,-4.51,-4.51,1,0\n"
                           "2026-03-14T09:26:55.000+01:00,1550,dBm,---.--,,0,0\n"
                           "2026-03-14T09:26:56.000+01:00,1550,dBm,---.--,,1,0\n"
                           "2026-03-14T09:26:57.000+01:00,1550,dBm, -9.99,-9.99,2,0\n"
                           "2026-03-14T09:26:58.000+01:00,1550,dB,3.21,3.21,1,0\n"
                           "2026-03-14T08:27:00.250Z,1550,dBm,-4.48,-4.48,1,0\n"
                           "2026-03-14T09:27:12.500+01:00,1550,dBm,-4.53,-4.53,1,0\n"
                           "2026-03-14T03:27:23.750-05:00,1550,dBm,-4.46,-4.46,1,0\n"
                           "2026-03-14T09:27:37.000+01:00,1550,dBm,-4.497,-4.497,1,0\n"
        + QByteArray(bad).replace("03-14", "02-29") + QByteArray(bad).replace("03-14", "13-14")
        + QByteArray(bad).replace("-9.99,1", "-9.99x,1")
        + QByteArray(bad).replace("+01:00", "+0100") + QByteArray(bad).replace(".000", "")
        + QByteArray(bad).replace("-9.99,1", "nan,1") + QByteArray(bad).replace(",1,0", ",1.5,0")
        + QByteArray(bad).replace(",0\n", ",0,0\n") + QByteArray(bad).replace(",1550,", ",\"1550,")
        + QByteArray(bad).replace("dBm", "\xb5W")
        + QByteArray(bad).replace("dBm", QByteArray("d\0m", 3))
        + QByteArray(bad).replace("-9.99,1", "-9.99" + QByteArray(1100, ' ') + ",1");
    addRow("five readings among rows to skip", log,
           "1550 nm: 5 readings over 0:00:44, min -4.530 max -4.460 mean -4.495 std 0.0269 dB, "
           "drift +1.3066 dB/h\n9 rows, 4 without a reading in dBm\n",
           "opmrecord chart: 12 lines skipped (not a trend log row)\n");
    addRow("one reading, quoted wavelength",
           QByteArray("2026-03-14T09:26:53.000+01:00,\"1,5\"\"5\",dBm,-17.083,-17.083,1,0\n"),
           "1,5\"5: 1 readings over 0:00:00, min -17.083 max -17.083 mean -17.083 std 0.0000 dB, "
           "drift +0.0000 dB/h\n1 rows, 0 without a reading in dBm\n",
           "");
}

void TestTrend::statistics()
{
    QFETCH(QByteArray, log);
    QFETCH(QString, out);
    QFETCH(QString, err);
    TestDeviceRoot root;
    QVERIFY(root.writeFile("/stats.csv", header() + log));

    const ProgramRun chart =
        runProgram(OPMRECORD_PATH, args("chart stats.csv --summary"), root.path());
    QCOMPARE(chart.status, 0);
    QCOMPARE(QString::fromLatin1(chart.out), out);
    QCOMPARE(QString::fromLatin1(chart.err), err);
}

void TestTrend::logsRecord_data()
{
    addColumns<QByteArray, QByteArray, QByteArray, int, QByteArray, bool>(
        "wavelength unit value flag expected reading");
    addRow("reading, blanks around", QByteArray("1310"), QByteArray("dBm"), QByteArray(" -12.347 "),
           1, QByteArray("1310,dBm, -12.347 ,-12.347,1,1"), true);
    addRow("reader ended", QByteArray("850"), QByteArray("dBm"), QByteArray("-11.83"), 0,
           QByteArray("850,dBm,-11.83,-11.83,0,1"), false);
    // Every field full without a NUL: a comma, a quote, a backslash, CR, LF, bytes >= 0x80.
    addRow("hostile, no NUL",
           QByteArray("1,\"\xb5\\\x01"
                      "ab"),
           QByteArray("dBm\r\nxy\xff"), QByteArray("-12.5,0000000000"), 1,
           QByteArray("\"1,\"\"\\xb5\\x5c\\x01ab\",dBm\\x0d\\x0axy\\xff,\"-12.5,0000000000\",,1,1"),
           false);
}

void TestTrend::logsRecord()
{
    QFETCH(QByteArray, wavelength);
    QFETCH(QByteArray, unit);
    QFETCH(QByteArray, value);
    QFETCH(int, flag);
    QFETCH(QByteArray, expected);
    QFETCH(bool, reading);
    TestDeviceRoot root;
    RecordWriter writer;
    QVERIFY(writer.isAttached());
    writer.setReading(wavelength.constData(), unit.constData(), value.constData(), flag);
    writer.record()->needSave = 1; // a save the page asked for, which the log shows as it is

    const ProgramRun log = runProgram(
        OPMRECORD_PATH, args("log trend.csv --interval 20 --duration 0.05"), root.path());
    QCOMPARE(log.status, 0);
    const QList<QByteArray> lines = root.readFile("/trend.csv").split('\n');
    QCOMPARE(lines.first() + '\n', header());
    const QByteArray first = lines.at(1);
    int64_t ms;
    int32_t offset;
    QVERIFY2(TrendCsv::parseTime(first.left(first.indexOf(',')).constData(), &ms, &offset),
             first.constData());
    QCOMPARE(offset, -(3 * 3600 + 30 * 60));
    QVERIFY2(qAbs(ms - QDateTime::currentMSecsSinceEpoch()) < 60000, first.constData());
    QCOMPARE(first.mid(first.indexOf(',') + 1), expected);
    const int rows = lines.size() - 2;
    checkSummary(log.out, rows, reading ? 0 : rows);
}

void TestTrend::logRefuses_data()
{
    addColumns<QStringList, bool, QByteArray, int, QString>(
        "arguments segment existing status message");
    const QStringList plain = args("log trend.csv --duration 1");
    addRow("no segment", plain, false, QByteArray(), 1, "no shared segment");
    addRow("file exists", plain, true, QByteArray("kept\n"), 1, "--append");
    addRow("interval 19 ms", plain + args("--interval 19"), true, QByteArray(), 2, "bad interval");
    addRow("duration 0", args("log trend.csv --duration 0"), true, QByteArray(), 2, "bad duration");
    addRow("no file", args("log --append"), true, QByteArray(), 2, "no file");
}

// Nothing is written, and what was there stays as it was.
void TestTrend::logRefuses()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, segment);
    QFETCH(QByteArray, existing);
    QFETCH(int, status);
    QFETCH(QString, message);
    TestDeviceRoot root; // which holds a segment for its folder
    if (!segment)
        QCOMPARE(shmctl(shmget(ftok(".", 1), 0, 0), IPC_RMID, nullptr), 0);
    if (!existing.isNull())
        QVERIFY(root.writeFile("/trend.csv", existing));

    const ProgramRun log = runProgram(OPMRECORD_PATH, arguments, root.path());
    QCOMPARE(log.status, status);
    QVERIFY2(log.err.contains(message.toLatin1()), log.err.constData());
    QCOMPARE(QFile::exists(root.file("/trend.csv")), !existing.isNull());
    QCOMPARE(root.readFile("/trend.csv"), existing);
}

void TestTrend::logAppendsUntilSignal_data()
{
    addColumns<int>("signal");
    addRow("SIGINT", int(SIGINT));
    addRow("SIGTERM", int(SIGTERM));
}

// A log cut inside a row (the power went) goes on after it, without a second header, until the
// signal; then the summary line and status 0.
void TestTrend::logAppendsUntilSignal()
{
    QFETCH(int, signal);
    TestDeviceRoot root;
    RecordWriter writer;
    writer.setReading("1625", "dBm", "-4.63");
    const QByteArray cut = header() + "2026-11-25T14:03:07.125+01:00,1625,dB";
    QVERIFY(root.writeFile("/trend.csv", cut));
    QProcess process;
    process.setWorkingDirectory(root.path());
    process.start(OPMRECORD_PATH, args("log trend.csv --interval 20 --append"));
    OPM_TRY_VERIFY(root.readFile("/trend.csv").count('\n') >= 6, 20000);
    ::kill(pid_t(pidOf(process)), signal);
    QVERIFY(process.waitForFinished(20000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);

    const QByteArray after = root.readFile("/trend.csv");
    QVERIFY2(after.startsWith(cut + "\n"), after.left(200).constData());
    QCOMPARE(after.count(TrendCsv::kHeader), 1);
    TrendSeries::Log log;
    QVERIFY(TrendSeries::read(qPrintable(root.file("/trend.csv")), &log));
    QCOMPARE(int(log.skipped), 1);
    QCOMPARE(int(log.rows), after.count('\n') - 2);
    checkSummary(process.readAllStandardOutput(), after.count("-4.63,-4.63,1,0\n"), 0);
}

void TestTrend::chart_data()
{
    addColumns<QString, bool>("kind gap");
    addRow("continuous", "continuous", false);
    addRow("rows without a reading", "no reading", true);
    addRow("samples missing", "missing", true);
    addRow("another wavelength between", "other wavelength", true);
}

// The line of the first series, -4.50 dBm throughout, is the image line with the most of its
// colour; the gap is a stretch of a third of the plot without it.
void TestTrend::chart()
{
    QFETCH(QString, kind);
    QFETCH(bool, gap);
    TestDeviceRoot root;
    QVERIFY(root.writeFile("/chart.csv", sixtySeconds(kind)));

    QCOMPARE(runProgram(OPMRECORD_PATH, args("chart chart.csv -o chart.png"), root.path()).status,
             0);
    const QImage image(root.file("/chart.png"));
    QCOMPARE(image.size(), QSize(800, 480));
    const QList<int> line = densestLine(image, TrendChart::seriesColour(0));
    QVERIFY2(line.size() > 300, qPrintable(QString::number(line.size())));
    int hole = 0;
    for (int i = 1; i < line.size(); ++i)
        hole = qMax(hole, line[i] - line[i - 1] - 1);
    QVERIFY2(gap ? hole > 150 : hole < 5, qPrintable(QString::number(hole)));
    const int second = densestLine(image, TrendChart::seriesColour(1)).size();
    QVERIFY2((second > 150) == (kind == "other wavelength"), qPrintable(QString::number(second)));
}

QTEST_MAIN(TestTrend)
#include "tst_trend.moc"
