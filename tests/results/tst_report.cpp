// The HTML report of the saved readings: whole files compared with text built here from the
// report's formats.
#include "opmPageProbe.h"
#include "resultRows.h"

namespace {

const QString kHead = "<tr><th>ST</th><th>WaveLenth(nm)</th><th>Test Mode</th>";
const QString kTail = "<th>Value</th><th>Pass</th></tr>";

QString td(const QString& text)
{
    return "<td align=\"center\">" + text + "</td>";
}
QString tdNoWrap(const QString& text)
{
    return "<td noWrap align=\"center\">" + text + "</td>";
}
// A table: its header, the row's first cells (save time, wavelength, mode), the others, the last.
QString table(const QString& header, const QString& wave, const QString& mode,
    const QString& middle, const QString& last)
{
    return "<table border=\"1\">\n" + header + "<tr><td align=\"center\">%TIME%</td>" + td(wave)
        + td(mode) + middle + td(last) + "</tr></table><br />";
}

QString englishDateTime(const QDateTime& t)
{
    static const char* const days[]
        = { "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday" };
    static const char* const months[] = { "January", "February", "March", "April", "May", "June",
        "July", "August", "September", "October", "November", "December" };
    return QString("%1 %2 %3")
        .arg(days[t.date().dayOfWeek() - 1], months[t.date().month() - 1],
            t.toString("yyyy hh:mm:ss"));
}

QString row(const QString& label, const QString& value)
{
    return "\t<tr><font size=\"4\"> <td>" + label + "</td><td>" + value + "</td></font></tr>\n";
}

// The whole report as saved at moment t. Empty mac or serial: that row is left out.
QByteArray report(const QDateTime& t, const QString& version, const QString& mac,
    const QString& serial, const QString& tables)
{
    QString text
        = "<html>\n<head><title>OPM Result</title></head>\n<body>\n<h4>OPM Result</h4>"
          "\n<br><font size=4> <a  style=\"color:blue;\"> General Information </a> </font> </br>\n"
          "<table border=\"1\">\n";
    text += row("Date and Time Results Were Saved:", englishDateTime(t));
    text += row("Software Version:", version);
    if (!mac.isEmpty())
        text += row("MAC Address of Test Port:", mac);
    if (!serial.isEmpty())
        text += row("Serial Number of Test Set:", serial);
    return (text + "</table><br>" + tables + "</body>\n</html>").toUtf8();
}

const QByteArray kE2prom = "mac=00:1a:2b:3c:4d:5e\nsn=BR-0001234\n";
const QByteArray kVendor = "Brova Common 2.4.1\nsecond line\n";
const QString kAcceptAsProposed = "%OK%";

// The main page in a device root of its own, with its identity files; exports answer the
// keypad with the given entry (a null entry cancels it).
struct ReportFixture
{
    explicit ReportFixture(const QByteArray& e2prom = kE2prom, const QByteArray& vendor = kVendor)
    {
        root.installReaderStandIn();
        if (!e2prom.isNull())
            root.writeFile("/etc/brova/e2prom.txt", e2prom);
        if (!vendor.isNull())
            root.writeFile("/usr/local/brova/lib/vendor-info.txt", vendor);
        page.reset(new COpmMainPage);
    }
    // What the export printed; before and after: the moments around it.
    QByteArray exportAs(const QString& entry)
    {
        closer.handler = [entry](QWidget* box) {
            return entry == kAcceptAsProposed ? pressKeyPad(box, "OK") : answerKeyPad(box, entry);
        };
        StdoutCapture output;
        before = QDateTime::currentDateTime();
        page->saveOpmResult();
        after = QDateTime::currentDateTime();
        return output.take();
    }
    QString reportDir() const { return root.file("/home/brova/brova-rslt/opm"); }
    QStringList reports() const { return QDir(reportDir()).entryList(QDir::Files | QDir::Hidden); }
    QByteArray reportFile(const QString& name) const
    {
        return root.readFile("/home/brova/brova-rslt/opm/" + name);
    }
    // The report file equals the expected text at one of the moments around the export.
    bool matches(
        const QString& name, const std::function<QByteArray(const QDateTime&)>& expected) const
    {
        const QByteArray actual = reportFile(name);
        const bool same = actual == expected(before) || actual == expected(after);
        if (!same)
            qWarning("report:\n%s\nexpected:\n%s", actual.constData(), expected(after).constData());
        return same;
    }
    QString stamp(const QDateTime& t) const { return t.toString("yyyyMMdd-hhmmss"); }

    TestDeviceRoot root;
    ModalBoxCloser closer;
    std::unique_ptr<COpmMainPage> page;
    QDateTime before, after;
};

} // namespace

class TestReport : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void tables_data();
    void tables();
    void generalInformation_data();
    void generalInformation();
    void names_data();
    void names();
    void sameNameReplaces();
};

// The report's day and month names must not follow the machine's language.
void TestReport::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
}

void TestReport::tables_data()
{
    QTest::addColumn<QStringList>("results");
    QTest::addColumn<QString>("tables");

    const QString power1 = "Power Meter|1550|-12.345 dBm|YES|-20.000000|0.000000|dBm";
    const QString loss3
        = "Loss Meter|850|2.750000 dB/km|NO|-20.000000|-3.000000|dBm|-3.02|3.200000 km";
    const QString loss4 = "Loss Meter|1310|1.250000 dB|YES|0.000100|0.002000|mW|-4.50|";
    const QString loss5 = "Loss Meter|1490|0.500000 dB||||||";

    QTest::newRow("empty store") << QStringList() << QString();
    QTest::newRow("power meter, limits on")
        << QStringList { power1 }
        << table(kHead + "<th>Minimum</th><th>Maximum</th>" + kTail, "1550", "Power Meter",
               td("-20.000000dBm") + td("0.000000dBm") + td("-12.345 dBm"), "YES");
    QTest::newRow("power meter, limits off")
        << QStringList { "Power Meter|1625|0.000120 mW|" }
        << table(kHead + "<th>Value</th></tr>", "1625", "Power Meter", QString(), "0.000120 mW");
    QTest::newRow("loss meter, limits on, length")
        << QStringList { loss3 }
        << table(
               kHead + "<th>Ref.(dBm)</th><th>Length</th><th>Minimum</th><th>Maximum</th>" + kTail,
               "850", "Loss Meter",
               td("-3.02") + td("3.200000 km") + tdNoWrap("-20.000000dBm") + td("-3.000000dBm")
                   + tdNoWrap("2.750000 dB/km"),
               "NO");
    QTest::newRow("loss meter, limits on, no length")
        << QStringList { loss4 }
        << table(
               kHead + "<th>Ref.(dBm)</th><th width=\"100px\">Minimum</th><th>Maximum</th>" + kTail,
               "1310", "Loss Meter",
               td("-4.50") + tdNoWrap("0.000100mW") + td("0.002000mW") + tdNoWrap("1.250000 dB"),
               "YES");
    QTest::newRow("loss meter, limits off")
        << QStringList { loss5 }
        << table(kHead + "<th>Ref.(dBm)</th><th>Value</th></tr>", "1490", "Loss Meter", td(""),
               "0.500000 dB");
    // Only "Loss Meter" itself selects the loss tables.
    QTest::newRow("other mode text")
        << QStringList { "loss meter|850|1.000 dBm|" }
        << table(kHead + "<th>Value</th></tr>", "850", "loss meter", QString(), "1.000 dBm");
    QTest::newRow("oldest first") << QStringList { "Power Meter|850|-1.000 dBm|", loss5 }
                                  << table(kHead + "<th>Value</th></tr>", "850", "Power Meter",
                                         QString(), "-1.000 dBm")
            + table(kHead + "<th>Ref.(dBm)</th><th>Value</th></tr>", "1490", "Loss Meter", td(""),
                "0.500000 dB");
}

void TestReport::tables()
{
    QFETCH(QStringList, results);
    QFETCH(QString, tables);

    ReportFixture fx;
    const QStringList times = storeResults(results);
    for (const QString& time : times)
        tables.replace(tables.indexOf("%TIME%"), 6, time);
    const QByteArray output = fx.exportAs("report");

    QCOMPARE(fx.reports(), QStringList { "report.html" });
    QVERIFY(fx.matches("report.html", [&](const QDateTime& t) {
        return report(t, "Common 2.4.1\n", "00:1a:2b:3c:4d:5e", "BR-0001234", tables);
    }));
    QVERIFY(!output.contains("ERROR"));
    QCOMPARE(CBrovaOpmDataEngine::getSingleInstance()->getResultItemCount(), results.size());
}

void TestReport::generalInformation_data()
{
    QTest::addColumn<QByteArray>("e2prom");
    QTest::addColumn<QByteArray>("vendor");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("mac");
    QTest::addColumn<QString>("serial");

    QTest::newRow("bytes above 0x7f")
        << QByteArray("mac=A8:80:FF:00:7f:0a\nsn=X1\n") << kVendor << "Common 2.4.1\n"
        << "a8:80:ff:00:7f:0a"
        << "X1";
    QTest::newRow("no EEPROM data") << QByteArray() << kVendor << "Common 2.4.1\n"
                                    << ""
                                    << "";
    QTest::newRow("MAC unreadable")
        << QByteArray("mac=00:1a:2b\nsn=X1\n") << kVendor << "Common 2.4.1\n"
        << ""
        << "X1";
    QTest::newRow("serial unreadable")
        << QByteArray("mac=00:1a:2b:3c:4d:5e\n") << kVendor << "Common 2.4.1\n"
        << "00:1a:2b:3c:4d:5e"
        << "";
    QTest::newRow("no vendor file") << kE2prom << QByteArray() << ""
                                    << "00:1a:2b:3c:4d:5e"
                                    << "BR-0001234";
    QTest::newRow("empty vendor file") << kE2prom << QByteArray("") << ""
                                       << "00:1a:2b:3c:4d:5e"
                                       << "BR-0001234";
    QTest::newRow("no Common") << kE2prom << QByteArray("Brova 2.4.1\nCommon 9\n") << ""
                               << "00:1a:2b:3c:4d:5e"
                               << "BR-0001234";
    // Only the first 127 characters of the first line are read.
    QTest::newRow("1 MB line") << kE2prom << "Common " + QByteArray(1 << 20, 'x')
                               << "Common " + QString(120, 'x') << "00:1a:2b:3c:4d:5e"
                               << "BR-0001234";
    QTest::newRow("Common too late") << kE2prom << QByteArray(127, 'x') + "Common 1\n"
                                     << ""
                                     << "00:1a:2b:3c:4d:5e"
                                     << "BR-0001234";
    QTest::newRow("no line break") << kE2prom << QByteArray("v3 Common 3.0") << "Common 3.0"
                                   << "00:1a:2b:3c:4d:5e"
                                   << "BR-0001234";
}

void TestReport::generalInformation()
{
    QFETCH(QByteArray, e2prom);
    QFETCH(QByteArray, vendor);
    QFETCH(QString, version);
    QFETCH(QString, mac);
    QFETCH(QString, serial);

    ReportFixture fx(e2prom, vendor);
    storeResults({});
    const QByteArray output = fx.exportAs("info");

    QVERIFY(fx.matches(
        "info.html", [&](const QDateTime& t) { return report(t, version, mac, serial, ""); }));
    const int failedReads = int(mac.isEmpty()) + int(serial.isEmpty());
    QCOMPARE(output.count("### ERROR: FILE:"), failedReads);
    QCOMPARE(output.count("\t Func:saveGeneralInfoOfSet\t"), failedReads);
}

void TestReport::names_data()
{
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QString>("file"); // "%STAMP%": the proposed date-and-time name

    QTest::newRow("proposed name") << kAcceptAsProposed << "%STAMP%.html";
    QTest::newRow("keypad cancelled") << QString() << "%STAMP%.html";
    QTest::newRow("empty name") << "" << ".html";
    QTest::newRow("blanks") << "site A 1" << "site A 1.html";
    // The keypad takes at most 100 characters.
    QTest::newRow("300 characters") << QString(300, 'n') << QString(100, 'n') + ".html";
    QTest::newRow("slash into no folder") << "a/b" << "";
}

void TestReport::names()
{
    QFETCH(QString, entry);
    QFETCH(QString, file);

    ReportFixture fx;
    storeResults({ "Power Meter|1550|-1.000 dBm|" });
    const QDateTime start = QDateTime::currentDateTime();
    const QByteArray output = fx.exportAs(entry);

    QCOMPARE(fx.closer.count(), 1);
    QCOMPARE(fx.closer.boxes().first().title, QString("Save Opm Result"));
    if (file.isEmpty()) {
        QVERIFY(output.contains("opm create save result file error \n"));
        QVERIFY(fx.reports().isEmpty());
        return;
    }
    QVERIFY(!output.contains("error"));
    // The proposed name is the moment the keypad opened: the second before or after start.
    const QStringList names = fx.reports();
    QCOMPARE(names.size(), 1);
    if (file.contains("%STAMP%"))
        QVERIFY2(names.first() == fx.stamp(start) + ".html"
                || names.first() == fx.stamp(fx.after) + ".html",
            qPrintable(names.first()));
    else
        QCOMPARE(names.first(), file);
    QVERIFY(fx.reportFile(names.first())
                .endsWith("-1.000 dBm</td></tr></table><br /></body>\n</html>"));
}

void TestReport::sameNameReplaces()
{
    ReportFixture fx;
    storeResults({ "Power Meter|1550|-1.000 dBm|", "Power Meter|1550|-2.000 dBm|" });
    fx.exportAs("same");
    const QStringList times = storeResults({ "Loss Meter|850|0.500000 dB|" });
    fx.exportAs("same");

    const QString tables = table(
        kHead + "<th>Ref.(dBm)</th><th>Value</th></tr>", "850", "Loss Meter", td(""), "0.500000 dB")
                               .replace("%TIME%", times.first());
    QVERIFY(fx.matches("same.html", [&](const QDateTime& t) {
        return report(t, "Common 2.4.1\n", "00:1a:2b:3c:4d:5e", "BR-0001234", tables);
    }));
}

QTEST_MAIN(TestReport)
#include "tst_report.moc"
