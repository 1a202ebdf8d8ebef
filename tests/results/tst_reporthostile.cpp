// Texts from outside the program in the report: the reader's wavelength and reading, the vendor
// file's version line, the EEPROM's serial number and a stored reference, each holding markup
// characters. A browser's parser (html5lib) must find the same tables with the same texts.
#include "opmPageProbe.h"
#include "qtCompat.h"

#include <QProcess>
#include <QSettings>

namespace {

const char kVersion[] = "Common <i>2.4</i> & \"x\" </td></tr>";
const char kSerial[] = "<b>SN</b>&\"</table>";
const char kWave[] = "</td>&\""; // the reader's wavelength: 7 characters
const char kStoredRef[] = "<td>-3&x\"</tr>"; // Reference1310 in the settings file
const char kReaderRef[] = "-1<i>&\"x"; // the reader's value, taken as a reference

// The tables of an HTML file as html5lib builds them: rows of cells joined by '|'.
QList<QStringList> parsedTables(const QString& file)
{
    QProcess parser;
    parser.start("/usr/bin/python3", QStringList() << REPORT_TABLES_SCRIPT << file);
    QList<QStringList> tables;
    if (!parser.waitForFinished(15000) || parser.exitCode() != 0)
        return tables;
    const QString text = QString::fromUtf8(parser.readAllStandardOutput()).trimmed();
    foreach (const QString& table, text.split("\n\n"))
        tables << table.split('\n');
    return tables;
}

// The text of the data row's cell under the given heading.
QString cellUnder(const QStringList& table, const QString& heading)
{
    const QStringList header = table.value(0).split('|');
    return table.value(1).split('|').value(header.indexOf(heading));
}

} // namespace

class TestReportHostile : public QObject
{
    Q_OBJECT
private slots:
    void tablesKeepTheirShape();
};

void TestReportHostile::tablesKeepTheirShape()
{
    TestDeviceRoot root;
    QVERIFY(root.installReaderStandIn());
    QVERIFY(root.writeFile(
        "/etc/brova/e2prom.txt", QByteArray("mac=00:1a:2b:3c:4d:a8\nsn=") + kSerial + "\n"));
    QVERIFY(root.writeFile(
        "/usr/local/brova/lib/vendor-info.txt", QByteArray("Brova ") + kVersion + "\n"));
    {
        QSettings stored(DevicePaths::settingFile(), QSettings::IniFormat);
        stored.setValue("COpmSetup/Reference1310", QString::fromLatin1(kStoredRef));
    }
    CBrovaOpmDataEngine::getSingleInstance()->clearAllresultItem();

    COpmMainPage page;
    NerioOpm* setup = OpmPageProbe::m_pTableOpmSetup(&page);
    RecordWriter reader;
    QVERIFY(reader.isAttached());
    // The reader's wavelength; a stored reference; the reader's value set as a reference.
    reader.setReading(kWave, "dBm", "-7.25");
    OpmPageProbe::act(setup, reader, "tick; click save; choose mode 1; show 1310 -3.5; click save");
    reader.setReading("1550", "dBm", kReaderRef);
    OpmPageProbe::act(setup, reader, "tick; click reference; click set; click limits");
    OpmPageProbe::act(setup, reader, "show 1550 -2; click save");
    QCOMPARE(CBrovaOpmDataEngine::getSingleInstance()->getResultItemCount(), 3);

    ModalBoxCloser closer;
    closer.handler = [](QWidget* box) { return answerKeyPad(box, "hostile"); };
    QTest::keyClick(&page, Qt::Key_F1);
    QCOMPARE(closer.count(), 1);

    const QList<QStringList> tables
        = parsedTables(root.file("/home/brova/brova-rslt/opm/hostile.html"));
    QCOMPARE(tables.size(), 4);
    QCOMPARE(tables[0].size(), 4);
    QCOMPARE(tables[0][1], QString("Software Version:|") + kVersion);
    QCOMPARE(tables[0][3], QString("Serial Number of Test Set:|") + kSerial);
    const int columns[] = { 4, 5, 8 }; // limits off in both modes, then on in Loss Meter (dB)
    for (int i = 1; i < 4; ++i) {
        QCOMPARE(tables[i].size(), 2);
        QCOMPARE(tables[i][0].count('|') + 1, columns[i - 1]);
        QCOMPARE(tables[i][1].count('|'), tables[i][0].count('|'));
    }
    QCOMPARE(cellUnder(tables[1], "WaveLenth(nm)"), QString(kWave));
    QCOMPARE(cellUnder(tables[2], "Ref.(dBm)"), QString(kStoredRef));
    QCOMPARE(cellUnder(tables[3], "Ref.(dBm)"), QString(kReaderRef));
}

QTEST_MAIN(TestReportHostile)
#include "tst_reporthostile.moc"
