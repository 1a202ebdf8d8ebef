// The settings file and the report folder unusable: at the start or taken away while the page
// runs.
#include "opmPageProbe.h"

namespace {

const QString kSettingFile = "/home/Setting/opmSetup.conf";
const QByteArray kTrace = "COpmSetupConfig cannot write ";
const QString kReportDir = "/home/brova/brova-rslt/opm";

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
    QTest::addColumn<bool>("atStart"); // else while the page runs
    QTest::addColumn<QString>("blocked"); // taken away, a folder with all it holds
    QTest::addColumn<QString>(
        "blocker"); // put in its place: a "file", a "folder" or "binary" bytes
    QTest::addColumn<bool>("fails"); // the changes cannot be kept

    QTest::newRow("binary file at start") << true << kSettingFile << "binary" << false;
    QTest::newRow("folder is a file at start") << true << "/home/Setting"
                                               << "file" << true;
    QTest::newRow("home is a file at start") << true << "/home"
                                             << "file" << true;
    QTest::newRow("file deleted") << false << kSettingFile << "" << false;
    QTest::newRow("folder deleted") << false << "/home/Setting"
                                    << "" << false; // made again on writing
    QTest::newRow("file is a folder") << false << kSettingFile << "folder" << true;
    QTest::newRow("folder is a file") << false << "/home/Setting"
                                      << "file" << true;
    QTest::newRow("home is a file") << false << "/home"
                                    << "file" << true;
}

// No key of the setup can be read: the page goes on with the defaults, and with its changes in
// memory where they cannot be kept. A failure is traced once, not on every change, a file in
// the way is left alone, and once the way is clear again the next change writes everything the
// page holds.
void TestFileFaults::settingsLost()
{
    QFETCH(bool, atStart);
    QFETCH(QString, blocked);
    QFETCH(QString, blocker);
    QFETCH(bool, fails);

    PageFixture fx(Keys(), !atStart);
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
    fx.act("choose wave 3; click mW; show 1550 -12.34");
    const QByteArray trace = capture.take();
    QCOMPARE(trace.count(kTrace), fails ? 1 : 0);
    fx.verify(facts("target=3; unit=1; label=0.058345 mW; boxes=0"));
    if (fails)
        QCOMPARE(fx.root.readFile(path), content);
    else // a garbled file is replaced by the setup and what could be read of it
        fx.verify(facts("file:Wavelength=1550; file:UNIT=mW; file:TestMode=PowerMeter"));
    QCOMPARE(storedSetup().size() >= 13, !fails);

    // The way cleared: whatever sits at the taken path goes, the folder is back.
    QFile::remove(fx.root.file(blocked));
    TestCompat::removeRecursively(fx.root.file(blocked));
    QVERIFY(QDir().mkpath(fx.root.file("/home/Setting")));
    fx.act("click limits");
    fx.verify(facts("file=13; file:Wavelength=1550; file:UNIT=mW; file:PowerLimit=enable; "
                    "file:TestMode=PowerMeter"));
}

// F1 with a file where the report folder should be: the failure is traced, nothing is written,
// the file is left alone and the page goes on.
void TestFileFaults::reportFolderReplaced()
{
    PageFixture fx(Keys(), false);
    QVERIFY(fx.root.installReader());
    QVERIFY(fx.root.writeFile(kReportDir, "in the way"));
    COpmMainPage main;
    fx.closer.handler = [](QWidget* box) { return answerKeyPad(box, "site"); };
    StdoutCapture capture;
    QTest::keyClick(&main, Qt::Key_F1);
    QVERIFY(capture.take().contains("opm create save result file error \n"));
    QCOMPARE(fx.root.readFile(kReportDir), QByteArray("in the way"));
    QCOMPARE(fx.closer.count(), 1); // the keypad, no other box
}

QTEST_MAIN(TestFileFaults)
#include "tst_filefaults.moc"
