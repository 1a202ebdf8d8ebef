// The saved readings: the process-wide store (twelve at most, oldest first, each stamped with
// the local time of its save); the Result tab, one line per saved reading, built when the tab
// opens, blanked when it closes; and the HTML report of them, the whole file against a golden
// file (results/golden/) once the moment of the export and the save times are put back as %DATE%
// and %TIME%, and the tables as a browser's parser reads them, markup in every text from outside
// included; the rows left out when a read fails; the version line; the name given on the keypad.
#include "fixedText.h"
#include "opmPageProbe.h"
#include "opmReport.h"

#include <QDateTime>
#include <QDir>
#include <QLocale>
#include <QProcess>

#include <cstring>

namespace {

// Empties the store and saves the readings in order, each written as "mode|wave|value|pass" (an
// empty pass: limits off) with optional "|min|max|unit|ref|length"; returns their save times.
QStringList storeResults(const QStringList& rows)
{
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    store->clearAllresultItem();
    QStringList times;
    foreach (const QString& row, rows) {
        const QStringList f = row.split('|');
        Result r = {};
        char* const fields[] = { r.testMode, r.waveLenth,  r.value, r.pass,       r.minimum,
                                 r.maximum,  r.limitsUnit, r.ref,   r.fiberLength };
        for (int j = 0; j < 9; ++j)
            FixedText::copy(fields[j], sizeof r.value, f.value(j).toLatin1().constData());
        r.isLimit = !f.value(3).isEmpty();
        store->addResultItem(r);
        times << QString::fromLatin1(r.time);
    }
    return times;
}

const QByteArray kE2prom = "mac=00:1a:2b:3c:4d:5e\nsn=X1\n";
const QByteArray kVendor = "Brova Common 2.4.1\nsecond line\n";

// The main page in a device root of its own, with its identity files; an export answers the
// keypad with the given entry (see answerKeyPad).
struct ReportFixture
{
    explicit ReportFixture(const QByteArray& e2prom = kE2prom)
    {
        root.installReader();
        if (!e2prom.isNull())
            root.writeFile("/etc/brova/e2prom.txt", e2prom);
        root.writeFile("/usr/local/brova/lib/vendor-info.txt", kVendor);
        page.reset(new COpmMainPage);
    }
    // What the export printed; before and after: the moments around it.
    QByteArray exportAs(const QString& entry)
    {
        closer.handler = [entry](QWidget* box) { return answerKeyPad(box, entry); };
        StdoutCapture output;
        before = QDateTime::currentDateTime();
        page->saveOpmResult();
        after = QDateTime::currentDateTime();
        return output.take();
    }
    QStringList reports() const
    {
        return QDir(root.file("/home/brova/brova-rslt/opm")).entryList(QDir::Files | QDir::Hidden);
    }
    TestDeviceRoot root;
    ModalBoxCloser closer;
    std::unique_ptr<COpmMainPage> page;
    QDateTime before, after;
};

// The golden file's bytes; what differs from them is left beside the suite's program, to compare
// or to take over as the new golden file.
QByteArray golden(const QString& name, const QByteArray& actual)
{
    QFile file(QString(REPORT_GOLDEN_DIR) + '/' + name);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    QFile differs(QCoreApplication::applicationDirPath() + '/' + name);
    if (bytes != actual && differs.open(QIODevice::WriteOnly))
        differs.write(actual);
    return bytes;
}

// The tables of a report as a browser's parser (html5lib) builds them: a line per row, cells
// joined by '|', a blank line between tables; the first line (the date's) left out.
QString parsedTables(const QString& file)
{
    QProcess parser;
    parser.start("/usr/bin/python3", QStringList() << REPORT_TABLES_SCRIPT << file);
    if (!parser.waitForFinished(20000) || parser.exitCode() != 0)
        return "parser failed: " + QString::fromUtf8(parser.readAllStandardError());
    return QString::fromUtf8(parser.readAllStandardOutput()).section('\n', 1);
}

} // namespace

class TestResults : public QObject
{
    Q_OBJECT
private slots:
    void lines_data()
    {
        addColumns<QStringList, QStringList>("results expected");

        addRow("empty store", QStringList(), QStringList());
        addRow(
            "limits on and off",
            QStringList() << "Power Meter|1550|-12.345 dBm|YES"
                          << "Loss Meter|850|2.750000 dB/km|",
            QStringList()
                << "Loc #1 , Wave length:1550 nm , Mode:Power Meter , Value:-12.345 dBm , Pass:YES"
                << "Loc #2 , Wave length:850 nm , Mode:Loss Meter , Value:2.750000 dB/km");
        QStringList thirteen, shown;
        for (int i = 1; i <= 13; ++i)
            thirteen << QString("Power Meter|1625|-%1.347 dBm|").arg(i);
        for (int i = 1; i <= 12; ++i)
            shown << QString("Loc #%1 , Wave length:1625 nm , Mode:Power Meter , Value:-%2.347 dBm")
                         .arg(i)
                         .arg(i + 1);
        addRow("thirteen: the oldest dropped", thirteen, shown);
        // Every field at its full width: the line is cut at 99 characters.
        const QString w(15, 'W');
        addRow("full-width fields", QStringList((QStringList() << w << w << w << w).join("|")),
               QStringList("Loc #1 , Wave length:WWWWWWWWWWWWWWW nm , Mode:WWWWWWWWWWWWWWW , "
                           "Value:WWWWWWWWWWWWWWW , Pass:WWWWW"));
        // Texts as they were saved, bytes above 0x7f and markup included.
        addRow("Latin-1 and markup",
               QStringList(QString::fromLatin1("Loss Meter|13\xb5<&>|-1.5 d\xe9\"|")),
               QStringList(QString::fromLatin1(
                   "Loc #1 , Wave length:13\xb5<&> nm , Mode:Loss Meter , Value:-1.5 d\xe9\"")));
    }
    void lines()
    {
        QFETCH(QStringList, results);
        QFETCH(QStringList, expected);
        QStringList blank;
        while (blank.size() < COpmShowResultPage::kLineCount)
            blank << QString();
        expected += blank.mid(expected.size());

        TestDeviceRoot root;
        const QString format("yyyy-MM-dd HH:mm:ss");
        // The store's time() reads the kernel's coarse clock, which may lag a tick behind Qt's.
        const QString before = QDateTime::currentDateTime().addSecs(-1).toString(format);
        const QStringList times = storeResults(results);
        const QString after = QDateTime::currentDateTime().toString(format);
        foreach (const QString& time, times)
            QVERIFY2(before <= time && time <= after, qPrintable(time));
        // The newest is the last saved; the store's copies follow what a list holds.
        CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
        if (!results.isEmpty())
            QCOMPARE(QString::fromLatin1(store->getLastResultItem().value),
                     results.last().section('|', 2, 2));
        std::list<Result> list(1);
        store->getAllResultItem(list);
        QCOMPARE(int(list.size()), 1 + store->getResultItemCount());

        COpmShowResultPage page;
        QCOMPARE(OpmPageProbe::lines(&page), blank);
        page.show();
        QCOMPARE(OpmPageProbe::lines(&page), expected);
        page.hide();
        QCOMPARE(OpmPageProbe::lines(&page), blank);
        page.show();
        QCOMPARE(OpmPageProbe::lines(&page), expected);

        OpmPageProbe::clear(&page)->click();
        QCOMPARE(OpmPageProbe::lines(&page), blank);
        QCOMPARE(store->getResultItemCount(), 0);
    }
    // The report's day and month names must not follow the machine's language.
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }

    // Each kind of table once, oldest first: Power Meter with limits and without, Loss Meter with
    // limits and a length, with limits and no length, without limits, and a mode text that is
    // neither mode. Then markup characters in every text from outside the program: the vendor
    // file's version line, the EEPROM's serial number and every text of a saved reading; a
    // browser's parser finds the same tables, each cell holding the text as it was.
    void everyTable()
    {
        // Raw and escaped, "&lt;" reads differently; a byte above 0x7f stays one Latin-1 character.
        const QString m = QString::fromLatin1("<b>&lt;\"x</td>\xb5");
        ReportFixture fx("mac=00:1a:2b:3c:4d:5e\nsn=" + m.left(14).toLatin1() + '\n');
        QVERIFY(fx.root.writeFile("/usr/local/brova/lib/vendor-info.txt",
                                  "v Common <i>2.4</i> & \"x\" </td></tr>\n"));
        const QStringList times = storeResults(
            QStringList()
            << "Power Meter|1550|-12.345 dBm|YES|-20.000000|0.000000|dBm"
            << "Power Meter|1625|0.000120 mW|"
            << "Loss Meter|850|2.750000 dB/km|NO|-20.000000|-3.000000|dBm|-3.02|3.200000 km"
            << "Loss Meter|1310|1.250000 dB|YES|0.000100|0.002000|mW|-4.50|"
            << "Loss Meter|1490|0.500000 dB||||||"
            << "loss meter|850|1.000 dBm|" << QString("Loss Meter|%1|%1|%1|%1|%1|%1|%1|%1").arg(m)
            << QString("%1|%1|%1|%1|%1|%1|%1").arg(m));
        fx.exportAs("report");
        QCOMPARE(fx.reports(), QStringList("report.html"));
        // The moment of the export in English words as %DATE%, the save times as %TIME%.
        QByteArray report = fx.root.readFile("/home/brova/brova-rslt/opm/report.html");
        QString tables = parsedTables(fx.root.file("/home/brova/brova-rslt/opm/report.html"));
        const QLocale english(QLocale::English);
        const QString format("dddd MMMM yyyy hh:mm:ss");
        report.replace(english.toString(fx.before, format).toLatin1(), "%DATE%")
            .replace(english.toString(fx.after, format).toLatin1(), "%DATE%");
        for (int i = 0; i < times.size(); ++i) {
            report.replace(times[i].toLatin1(), "%TIME%");
            tables.replace(times[i], "%TIME%");
        }
        QCOMPARE(report, golden("every-table.html", report));
        QCOMPARE(tables, QString::fromUtf8(golden("every-table.txt", tables.toUtf8())));
        QCOMPARE(CBrovaOpmDataEngine::getSingleInstance()->getResultItemCount(), times.size());
    }

    void version_data()
    {
        // vendor: null: no file
        addColumns<QByteArray, int, int, QByteArray>("vendor room status version");

        addRow("no line break", QByteArray("v3 Common 3.0"), 128, 0, QByteArray("Common 3.0"));
        addRow("no Common in the first line", QByteArray("Brova 2.4.1\nCommon 9\n"), 128, 0,
               QByteArray());
        // Only the first room - 1 characters of the first line are read.
        addRow("1 MB line", "Common " + QByteArray(1 << 20, 'x'), 128, 0,
               "Common " + QByteArray(120, 'x'));
        addRow("Common too late", QByteArray(127, 'x') + "Common 1\n", 128, 0, QByteArray());
        addRow("no file", QByteArray(), 128, -1, QByteArray());
        addRow("no room", kVendor, 0, -2, QByteArray());
    }

    void version()
    {
        QFETCH(QByteArray, vendor);
        QFETCH(int, room);
        QFETCH(int, status);
        QFETCH(QByteArray, version);

        TestDeviceRoot root;
        if (!vendor.isNull())
            QVERIFY(root.writeFile("/vendor", vendor));
        char out[129];
        std::memset(out, 'X', sizeof out);
        QCOMPARE(opmGetVersion(qPrintable(root.file("/vendor")), out, size_t(room)), status);
        if (status == 0)
            QCOMPARE(QByteArray(out, int(strnlen(out, size_t(room)))), version);
    }

    void exports_data()
    {
        // e2prom: null: no file
        // file: "%STAMP%": the proposed date-and-time name; empty: none written
        // rows: the general information after the date's row, as parsed
        addColumns<QByteArray, QString, QString, QString>("e2prom entry file rows");

        const QString version = "Software Version:|Common 2.4.1\n";
        const QString serial = "Serial Number of Test Set:|X1\n";
        const QString mac = "MAC Address of Test Port:|00:1a:2b:3c:4d:5e\n";
        addRow("proposed name", kE2prom, "%OK%", "%STAMP%.html", version + mac + serial);
        addRow("keypad cancelled, no EEPROM data", QByteArray(), QString(), "%STAMP%.html",
               version);
        // The keypad takes at most 100 characters.
        addRow("300 characters, MAC unreadable", QByteArray("mac=00:1a:2b\nsn=X1\n"),
               QString(300, 'n'), QString(100, 'n') + ".html", version + serial);
        addRow("MAC with dots", QByteArray("mac=00.1a.2b.3c.4d.5e\nsn=X1\n"), "dots", "dots.html",
               version + serial);
        addRow("serial unreadable", QByteArray("mac=00:1a:2b:3c:4d:5e\n"), "sn", "sn.html",
               version + mac);
        addRow("slash into no folder", kE2prom, "a/b", "", "");
    }

    // The keypad proposes the moment it opened as the name. A row of the general information whose
    // read fails is left out, and the failure traced with the line of that read.
    void exports()
    {
        QFETCH(QByteArray, e2prom);
        QFETCH(QString, entry);
        QFETCH(QString, file);
        QFETCH(QString, rows);

        ReportFixture fx(e2prom);
        storeResults(QStringList());
        const QByteArray output = fx.exportAs(entry);
        QCOMPARE(fx.closer.count(), 1);
        QVERIFY(fx.closer.boxes().first().startsWith("Save Opm Result:"));
        QCOMPARE(bool(output.contains("opm create save result file error \n")), file.isEmpty());
        const QString format("yyyyMMdd-hhmmss");
        const QStringList first(QString(file).replace("%STAMP%", fx.before.toString(format)));
        const QStringList last(QString(file).replace("%STAMP%", fx.after.toString(format)));
        QVERIFY2(file.isEmpty() ? fx.reports().isEmpty()
                                : fx.reports() == first || fx.reports() == last,
                 qPrintable(fx.reports().join(" ")));
        if (file.isEmpty())
            return;
        QCOMPARE(parsedTables(fx.root.file("/home/brova/brova-rslt/opm/" + fx.reports().first())),
                 rows);
        const int failedReads = 2 - rows.count("Address") - rows.count("Serial");
        QCOMPARE(output.count("### ERROR: FILE:"), failedReads);
        QCOMPARE(output.count("\t Func:saveGeneralInfoOfSet\t"), failedReads);
    }
};

QTEST_MAIN(TestResults)
#include "tst_results.moc"
