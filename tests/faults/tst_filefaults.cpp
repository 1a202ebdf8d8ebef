// Files taken away while the page runs: the settings file or its folders, the report folder.
#include "opmPageProbe.h"

namespace {

const QString kSettingFile = QString::fromLatin1("/home/Setting/opmSetup.conf");
const QByteArray kTrace = "COpmSetupConfig cannot write ";
const QString kReportDir = QString::fromLatin1("/home/brova/brova-rslt/opm");

} // namespace

class TestFileFaults : public QObject
{
    Q_OBJECT
private slots:
    void settingsLost_data();
    void settingsLost();
    void reportFolderReplaced();
};

void TestFileFaults::settingsLost_data()
{
    QTest::addColumn<QString>("removed"); // taken away, a folder with all it holds
    QTest::addColumn<QString>("inTheWay"); // a regular file put in the way, or none
    QTest::addColumn<bool>("fails"); // the changes cannot be kept

    QTest::newRow("file deleted") << kSettingFile << "" << false;
    QTest::newRow("folder deleted") << "/home/Setting" << "" << false; // made again on writing
    QTest::newRow("file is a folder") << kSettingFile << kSettingFile + "/x" << true;
    QTest::newRow("folder is a file") << "/home/Setting" << "/home/Setting" << true;
    QTest::newRow("home is a file") << "/home" << "/home" << true;
}

// The page goes on with its values in memory; a failure is traced once, not on every change,
// and once the way is clear again the next change writes everything it holds.
void TestFileFaults::settingsLost()
{
    QFETCH(QString, removed);
    QFETCH(QString, inTheWay);
    QFETCH(bool, fails);

    PageFixture fx;
    QVERIFY(QFile::remove(fx.root.file(kSettingFile)));
    QVERIFY(TestCompat::removeRecursively(fx.root.file(removed)));
    QVERIFY(inTheWay.isEmpty() || fx.root.writeFile(inTheWay, "in the way"));

    StdoutCapture capture;
    fx.act("choose wave 3; click mW; show 1550 -12.34");
    const QByteArray trace = capture.take();
    QCOMPARE(trace.count(kTrace), fails ? 1 : 0);
    fx.verify({ { "target", "3" }, { "unit", "1" }, { "label", "0.058345 mW" }, { "boxes", "0" },
                { "file", fails ? "0" : "13" } });
    QCOMPARE(fx.root.readFile(inTheWay), QByteArray(inTheWay.isEmpty() ? "" : "in the way"));

    // The way cleared: whatever sits at the removed path goes, the folder is back.
    QFile::remove(fx.root.file(removed));
    QVERIFY(TestCompat::removeRecursively(fx.root.file(removed)));
    QVERIFY(QDir().mkpath(fx.root.file("/home/Setting")));
    fx.act("click limits");
    fx.verify({ { "file", "13" }, { "file:Wavelength", "1550" }, { "file:UNIT", "mW" },
                { "file:PowerLimit", "enable" } });
}

// F1 with a file where the report folder was: the failure is traced, nothing is written and the
// page goes on; with the folder back the next export works again.
void TestFileFaults::reportFolderReplaced()
{
    PageFixture fx(Keys(), false);
    QVERIFY(fx.root.installReaderStandIn());
    COpmMainPage main;
    main.show();
    NerioOpm* setup = OpmPageProbe::m_pTableOpmSetup(&main);
    fx.closer.handler = [](QWidget* box) { return answerKeyPad(box, "site"); };
    OpmPageProbe::act(setup, fx.reader, "show 1550 -12.34; click save");
    QTest::keyClick(&main, Qt::Key_F1);
    QVERIFY(QFileInfo(fx.root.file(kReportDir + "/site.html")).isFile());
    QVERIFY(TestCompat::removeRecursively(fx.root.file(kReportDir)));
    QVERIFY(fx.root.writeFile(kReportDir, "in the way"));

    StdoutCapture capture;
    QTest::keyClick(&main, Qt::Key_F1);
    const QByteArray trace = capture.take();
    QVERIFY2(trace.contains("opm create save result file error \n"), trace.constData());
    QCOMPARE(fx.root.readFile(kReportDir), QByteArray("in the way"));
    const QDir parent(fx.root.file("/home/brova/brova-rslt"));
    QCOMPARE(parent.entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
             QStringList { "opm" });

    QVERIFY(QFile::remove(fx.root.file(kReportDir)));
    OpmPageProbe::act(setup, fx.reader, "show 1550 -7.5; click save");
    QTest::keyClick(&main, Qt::Key_F1);
    QVERIFY(fx.root.readFile(kReportDir + "/site.html").contains("-7.500 dBm"));
    QCOMPARE(fx.closer.count(), 3); // the three keypads, no other box
}

QTEST_MAIN(TestFileFaults)
#include "tst_filefaults.moc"
