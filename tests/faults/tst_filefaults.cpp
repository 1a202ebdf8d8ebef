// The settings file and the report folder unusable: at the start or taken away while the page
// runs.
#include "opmPageProbe.h"

namespace {

const QString kSettingFile = "/home/Setting/opmSetup.conf";
const QByteArray kTrace = "COpmSetupConfig cannot write ";

} // namespace

class TestFileFaults : public QObject
{
    Q_OBJECT
private slots:
    void settingsLost_data();
    void settingsLost();
};

void TestFileFaults::settingsLost_data()
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
void TestFileFaults::settingsLost()
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
    using P = OpmPageProbe;
    P::choose(fx.page, P::Wave, 3);
    P::click(fx.page, P::MW);
    fx.show("1550", "-12.347");
    const QByteArray trace = capture.take();
    QCOMPARE(trace.count(kTrace), fails ? 1 : 0);
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
    QCOMPARE(storedValue("Wavelength") + ' ' + storedValue("UNIT") + ' ' + storedValue("PowerLimit")
                 + ' ' + storedValue("TestMode"),
             QString("1550 mW enable PowerMeter"));
}

QTEST_MAIN(TestFileFaults)
#include "tst_filefaults.moc"
