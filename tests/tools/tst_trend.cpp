// The inspector's trend log and chart. The figures of a stability test from a log with known
// readings (times in several UTC offsets, rows without a reading among them); the lines a
// reader of logs must skip; "opmrecord log" against a record written here (each kind of row,
// hostile texts, refusals, --append, the end on a signal); "opmrecord chart" as a picture whose
// lines break where readings are missing.
#include "opmShareRecord.h"
#include "testSupport.h"
#include "trendChart.h"
#include "trendCsv.h"
#include "trendSeries.h"

#include <QImage>
#include <QProcess>
#include <QRegExp>
#include <QtTest>

#include <csignal>

#include <sys/ipc.h>
#include <sys/shm.h>
#include <sys/types.h>

namespace {

// A log row at a time with offset; number is taken from value when it is one.
QByteArray row(const char* time, const char* value, int flag = 1, const char* wavelength = "1550",
               const char* unit = "dBm")
{
    double number;
    const QByteArray numberText =
        TrendCsv::parseNumber(value, &number) ? QByteArray(value).trimmed() : QByteArray();
    return QByteArray(time) + ',' + wavelength + ',' + unit + ',' + value + ',' + numberText + ','
        + QByteArray::number(flag) + ",0\n";
}

// Sixty readings a second apart at -4.50 dBm, rows 20 to 39 replaced as kind says.
QByteArray sixtySeconds(const QString& kind)
{
    QByteArray log = TrendCsv::kHeader + QByteArray("\n");
    for (int i = 0; i < 60; ++i) {
        const QByteArray time = "2026-11-25T14:03:" + QByteArray::number(i / 10)
            + QByteArray::number(i % 10) + ".125+01:00";
        const bool middle = i >= 20 && i < 40;
        if (!middle || kind == "continuous")
            log += row(time, "-4.50");
        else if (kind == "no reading")
            log += row(time, "---.--", 0);
        else if (kind == "no number")
            log += row(time, "---.--", 1);
        else if (kind == "other wavelength")
            log += row(time, "-4.91", 1, "1310");
    }
    return log;
}

// "log trend.csv --interval 20": the arguments of one run, blank between.
QStringList args(const char* words) { return QString::fromLatin1(words).split(' '); }

bool near(QRgb a, QRgb b)
{
    return qAbs(qRed(a) - qRed(b)) + qAbs(qGreen(a) - qGreen(b)) + qAbs(qBlue(a) - qBlue(b)) <= 24;
}

int pixelsOf(const QImage& image, int y, QRgb colour)
{
    int count = 0;
    for (int x = 0; x < image.width(); ++x)
        count += near(image.pixel(x, y), colour);
    return count;
}

// The longest stretch without the colour between its first and last pixel on line y.
int widestHole(const QImage& image, int y, QRgb colour)
{
    int last = -1, widest = 0;
    for (int x = 0; x < image.width(); ++x) {
        if (!near(image.pixel(x, y), colour))
            continue;
        if (last >= 0)
            widest = qMax(widest, x - last - 1);
        last = x;
    }
    return widest;
}

qint64 pidOf(const QProcess& process)
{
#if QT_VERSION >= 0x050000
    return process.processId();
#else
    return process.pid();
#endif
}

} // namespace

class TestTrend : public QObject
{
    Q_OBJECT
private slots:
    void statistics_data();
    void statistics();
    void skipsRows_data();
    void skipsRows();
    void logsRecord_data();
    void logsRecord();
    void logRefuses_data();
    void logRefuses();
    void logAppends();
    void logEndsOnSignal_data();
    void logEndsOnSignal();
    void chart_data();
    void chart();

private:
    int run(const QStringList& arguments, const QString& folder);
    bool writeFile(const QString& name, const QByteArray& data);
    // Checks the log run's summary line against the file's rows.
    void checkSummary(const QByteArray& log, bool withReadings);

    TestCompat::TempDir m_dir;
    QByteArray m_out;
    QByteArray m_err;
};

int TestTrend::run(const QStringList& arguments, const QString& folder)
{
    const ProgramRun opmrecord = runProgram(OPMRECORD_PATH, arguments, folder);
    m_out = opmrecord.out;
    m_err = opmrecord.err;
    return opmrecord.status;
}

bool TestTrend::writeFile(const QString& name, const QByteArray& data)
{
    QFile file(m_dir.path() + '/' + name);
    return file.open(QIODevice::WriteOnly) && file.write(data) == data.size();
}

void TestTrend::checkSummary(const QByteArray& log, bool withReadings)
{
    QRegExp summary("opmrecord log: (\\d+) rows, (\\d+) without a reading, from .* in trend.csv\n");
    QVERIFY2(summary.exactMatch(QString::fromLatin1(m_out)), m_out.constData());
    const int rows = log.count('\n') - 1;
    QVERIFY(rows > 0);
    QCOMPARE(summary.cap(1).toInt(), rows);
    QCOMPARE(summary.cap(2).toInt(), withReadings ? 0 : rows);
}

// Readings 0, 7.25, 19.5, 30.75 and 44 s from the first, written in three UTC offsets: mean
// -4.4954, sample std 0.026941 (population 0.024096), slope 0.000363 dB/s = 1.306585 dB/h.
void TestTrend::statistics_data()
{
    const QByteArray five = row("2026-03-14T09:26:53.000+01:00", "-4.51")
        + row("2026-03-14T08:27:00.250Z", "-4.48") + row("2026-03-14T09:27:12.500+01:00", "-4.53")
        + row("2026-03-14T03:27:23.750-05:00", "-4.46")
        + row("2026-03-14T09:27:37.000+01:00", "-4.497");
    QByteArray mixed = five;
    mixed.insert(five.indexOf("\n") + 1,
                 row("2026-03-14T09:26:55.000+01:00", "---.--", 0)
                     + row("2026-03-14T09:26:56.000+01:00", "---.--", 1)
                     + row("2026-03-14T09:26:57.000+01:00", " -9.99", 2)
                     + row("2026-03-14T09:26:58.000+01:00", "3.21", 1, "1550", "dB"));

    addColumns<QByteArray, int, QString, QString, QString, QString, QString, QString>(
        "log count minimum maximum mean deviation drift summary");
    const char* line = "1550 nm: 5 readings over 0:00:44, min -4.530 max -4.460 mean -4.495 std "
                       "0.0269 dB, drift +1.3066 dB/h";
    addRow("five readings", five, 5, "-4.530000", "-4.460000", "-4.495400", "0.026941", "1.306585",
           line);
    addRow("rows without a dBm reading between", mixed, 5, "-4.530000", "-4.460000", "-4.495400",
           "0.026941", "1.306585", line);
    addRow("one reading", row("2026-03-14T09:26:53.000+01:00", "-17.083"), 1, "-17.083000",
           "-17.083000", "-17.083000", "0.000000", "0.000000",
           "1550 nm: 1 readings over 0:00:00, min -17.083 max -17.083 mean -17.083 std 0.0000 dB, "
           "drift +0.0000 dB/h");
}

void TestTrend::statistics()
{
    QFETCH(QByteArray, log);
    QFETCH(int, count);
    QFETCH(QString, minimum);
    QFETCH(QString, maximum);
    QFETCH(QString, mean);
    QFETCH(QString, deviation);
    QFETCH(QString, drift);
    QFETCH(QString, summary);
    QVERIFY(writeFile("stats.csv", log));

    TrendSeries::Log read;
    QVERIFY(TrendSeries::read(qPrintable(m_dir.path() + "/stats.csv"), &read));
    QCOMPARE(int(read.series.size()), 1);
    const TrendStats::Summary& s = read.series[0].summary;
    QCOMPARE(int(s.count), count);
    QCOMPARE(QString::number(s.minimum, 'f', 6), minimum);
    QCOMPARE(QString::number(s.maximum, 'f', 6), maximum);
    QCOMPARE(QString::number(s.mean, 'f', 6), mean);
    QCOMPARE(QString::number(s.deviation, 'f', 6), deviation);
    QCOMPARE(QString::number(s.driftPerHour, 'f', 6), drift);

    QCOMPARE(run(args("chart stats.csv --summary"), m_dir.path()), 0);
    QCOMPARE(QString::fromLatin1(m_out.left(m_out.indexOf('\n'))), summary);
}

void TestTrend::skipsRows_data()
{
    addColumns<QByteArray, int, QString>("line skipped wavelength");
    const QByteArray good = "2026-11-25T14:03:07.125+01:00,1550,dBm,-4.52,-4.52,1,0";
    addRow("good", good, 0, "1550");
    addRow("quoted, comma and quote inside",
           QByteArray("2026-11-25T14:03:07.125Z,\"1,5\"\"5\",dBm,-4.5,-4.5,1,0"), 0, "1,5\"5");
    addRow("header", QByteArray(TrendCsv::kHeader), 0, "");
    addRow("six fields", good.left(good.lastIndexOf(',')), 1, "");
    addRow("eight fields", good + ",7", 1, "");
    addRow("month 13", QByteArray(good).replace("-11-", "-13-"), 1, "");
    addRow("30 February", QByteArray(good).replace("11-25", "02-30"), 1, "");
    addRow("no milliseconds", QByteArray(good).replace(".125", ""), 1, "");
    addRow("offset without colon", QByteArray(good).replace("+01:00", "+0100"), 1, "");
    addRow("flag not whole", QByteArray(good).replace(",1,0", ",1.5,0"), 1, "");
    addRow("number not a number", QByteArray(good).replace("-4.52,1", "-4.5x,1"), 1, "");
    addRow("number nan", QByteArray(good).replace("-4.52,1", "nan,1"), 1, "");
    addRow("unclosed quote", QByteArray(good).replace(",1550,", ",\"1550,"), 1, "");
    addRow("byte 0xb5", QByteArray(good).replace("dBm", "\xb5W"), 1, "");
    addRow("NUL inside", QByteArray(good).replace("dBm", QByteArray("d\0m", 3)), 1, "");
    addRow("longer than a line may be", good + QByteArray(3000, ' '), 1, "");
    QByteArray binary;
    for (int i = 0; i < 400; ++i)
        binary += char((i * 53 + 7) & 0xff);
    addRow("binary", binary.replace('\n', ' '), 1, "");
}

// Each line between two good rows: the good rows stay, the line is one row or one skipped.
void TestTrend::skipsRows()
{
    QFETCH(QByteArray, line);
    QFETCH(int, skipped);
    QFETCH(QString, wavelength);
    const QByteArray good = row("2026-11-25T14:03:06.125+01:00", "-4.51", 1, "850");
    QVERIFY(writeFile("rows.csv", good + line + '\n' + good));

    TrendSeries::Log log;
    QVERIFY(TrendSeries::read(qPrintable(m_dir.path() + "/rows.csv"), &log));
    QCOMPARE(int(log.skipped), skipped);
    QCOMPARE(int(log.rows), 2 + (skipped == 0 && !wavelength.isEmpty()));
    if (!wavelength.isEmpty() && log.series.size() > 1)
        QCOMPARE(QString::fromLatin1(log.series[1].wavelength.c_str()), wavelength);
}

void TestTrend::logsRecord_data()
{
    addColumns<QByteArray, QByteArray, QByteArray, int, QByteArray, bool>(
        "wavelength unit value flag expected reading");
    addRow("reading", QByteArray("1550"), QByteArray("dBm"), QByteArray("-4.52"), 1,
           QByteArray("1550,dBm,-4.52,-4.52,1,0"), true);
    addRow("blanks around", QByteArray("1310"), QByteArray("dB"), QByteArray(" 3.50 "), 1,
           QByteArray("1310,dB, 3.50 ,3.5,1,0"), true);
    addRow("no light", QByteArray("1550"), QByteArray("dBm"), QByteArray("---.--"), 1,
           QByteArray("1550,dBm,---.--,,1,0"), false);
    addRow("not connected", QByteArray("1550"), QByteArray("dBm"), QByteArray("---.--"), 2,
           QByteArray("1550,dBm,---.--,,2,0"), false);
    addRow("reader ended", QByteArray("850"), QByteArray("dBm"), QByteArray("-11.83"), 0,
           QByteArray("850,dBm,-11.83,-11.83,0,0"), false);
    // Every field full without a NUL: a comma, a quote, a backslash, CR, LF, bytes >= 0x80.
    addRow("hostile, no NUL",
           QByteArray("1,\"\xb5\\\x01"
                      "ab"),
           QByteArray("dBm\r\nxy\xff"), QByteArray("-12.5,0000000000"), 1,
           QByteArray("\"1,\"\"\\xb5\\x5c\\x01ab\",dBm\\x0d\\x0axy\\xff,\"-12.5,0000000000\",,1,0"),
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
    writer.record()->needSave = 0;

    QCOMPARE(run(args("log trend.csv --interval 20 --duration 0.05"), root.path()), 0);
    const QByteArray log = root.readFile("/trend.csv");
    const QList<QByteArray> lines = log.split('\n');
    QCOMPARE(lines.first(), QByteArray(TrendCsv::kHeader));
    const QByteArray first = lines.at(1);
    int64_t ms;
    int32_t offset;
    QVERIFY2(TrendCsv::parseTime(first.left(first.indexOf(',')).constData(), &ms, &offset),
             first.constData());
    QCOMPARE(first.mid(first.indexOf(',') + 1), expected);
    checkSummary(log, reading);
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

    QCOMPARE(run(arguments, root.path()), status);
    QVERIFY2(m_err.contains(message.toLatin1()), m_err.constData());
    QCOMPARE(QFile::exists(root.file("/trend.csv")), !existing.isNull());
    QCOMPARE(root.readFile("/trend.csv"), existing);
}

// A log cut inside a row (the power went) goes on after it: one header, the cut row on a line
// of its own, every new row whole.
void TestTrend::logAppends()
{
    TestDeviceRoot root;
    RecordWriter writer;
    writer.setReading("1490", "dBm", "-4.61");
    const QStringList arguments = args("log trend.csv --interval 20 --duration 0.05");
    QCOMPARE(run(arguments, root.path()), 0);
    const QByteArray before = root.readFile("/trend.csv");
    QVERIFY(root.writeFile("/trend.csv", before + "2026-11-25T14:03:07.125+01:00,1490,dB"));

    QCOMPARE(run(arguments + args("--append"), root.path()), 0);
    const QByteArray after = root.readFile("/trend.csv");
    QCOMPARE(after.count(TrendCsv::kHeader), 1);
    TrendSeries::Log log;
    QVERIFY(TrendSeries::read(qPrintable(root.file("/trend.csv")), &log));
    QCOMPARE(int(log.skipped), 1);
    QCOMPARE(int(log.rows), after.count('\n') - 2);
    QVERIFY(int(log.rows) > before.count('\n') - 1);
}

void TestTrend::logEndsOnSignal_data()
{
    addColumns<int>("signal");
    addRow("SIGINT", int(SIGINT));
    addRow("SIGTERM", int(SIGTERM));
}

// Until the signal the log goes on (no duration); then the summary line and status 0.
void TestTrend::logEndsOnSignal()
{
    QFETCH(int, signal);
    TestDeviceRoot root;
    RecordWriter writer;
    writer.setReading("1625", "dBm", "-4.63");
    QProcess process;
    process.setWorkingDirectory(root.path());
    process.start(OPMRECORD_PATH, args("log trend.csv --interval 20"));
    OPM_TRY_VERIFY(root.readFile("/trend.csv").count('\n') >= 4, 20000);
    ::kill(pid_t(pidOf(process)), signal);
    QVERIFY(process.waitForFinished(20000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    m_out = process.readAllStandardOutput();
    checkSummary(root.readFile("/trend.csv"), true);
}

void TestTrend::chart_data()
{
    addColumns<QString, bool>("kind gap");
    addRow("continuous", "continuous", false);
    addRow("rows with flag 0", "no reading", true);
    addRow("rows without a number", "no number", true);
    addRow("samples missing", "missing", true);
    addRow("another wavelength between", "other wavelength", true);
}

// The line of the first series, -4.50 dBm throughout, is the image row with the most of its
// colour; the gap is a stretch of a third of the plot without it.
void TestTrend::chart()
{
    QFETCH(QString, kind);
    QFETCH(bool, gap);
    QVERIFY(writeFile("chart.csv", sixtySeconds(kind)));
    QFile::remove(m_dir.path() + "/chart.png");

    QCOMPARE(run(args("chart chart.csv -o chart.png"), m_dir.path()), 0);
    const QImage image(m_dir.path() + "/chart.png");
    QCOMPARE(image.size(), QSize(800, 480));
    const QRgb colour = TrendChart::seriesColour(0);
    int line = 0;
    for (int y = 0; y < image.height(); ++y) {
        if (pixelsOf(image, y, colour) > pixelsOf(image, line, colour))
            line = y;
    }
    QVERIFY2(pixelsOf(image, line, colour) > 300, qPrintable(QString::number(line)));
    const int hole = widestHole(image, line, colour);
    QVERIFY2(gap ? hole > 150 : hole < 5, qPrintable(QString::number(hole)));
    if (kind == "other wavelength") {
        int second = 0;
        for (int y = 0; y < image.height(); ++y)
            second = qMax(second, pixelsOf(image, y, TrendChart::seriesColour(1)));
        QVERIFY2(second > 150, qPrintable(QString::number(second)));
    }
}

QTEST_MAIN(TestTrend)
#include "tst_trend.moc"
