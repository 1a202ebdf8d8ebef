// From the reader's reading to the customer's report: the stand-alone page with the simulated
// reader playing a scenario, the reader's save request, F1 and a name on the keypad, and a
// report that a browser's HTML parser reads back.
#include "opmPageProbe.h"

#include <QProcess>

class TestReportEndToEnd : public QObject
{
    Q_OBJECT
private slots:
    void readingToReport();
};

void TestReportEndToEnd::readingToReport()
{
    const int waitMs = 15000;
    TestDeviceRoot root;
    QVERIFY(root.installReaderStandIn());
    QVERIFY(root.writeFile("/etc/brova/e2prom.txt", "mac=00:1a:2b:3c:4d:a8\nsn=BR-0001234\n"));
    QVERIFY(root.writeFile("/usr/local/brova/lib/vendor-info.txt", "Brova Common 2.4.1\n"));
    QVERIFY(root.writeFile("/scenario.txt",
        "0 wavelenth=1310 unit=dBm value=-7.25 flag=1\n"
        "2500 needSave=1\n"
        "60000 end\n"));
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    store->clearAllresultItem();

    QProcess reader;
    reader.setWorkingDirectory(root.path());
    reader.start(LUMENPROBE_PATH, { "--scenario", root.file("/scenario.txt") });
    QVERIFY(reader.waitForStarted(waitMs));

    COpmMainPage page;
    page.show();
    NerioOpm* setup = OpmPageProbe::m_pTableOpmSetup(&page);
    OPM_TRY_COMPARE(
        OpmPageProbe::state(setup).value("label"), QString("-7.250 dBm"), waitMs);
    OPM_TRY_COMPARE(store->getResultItemCount(), 1, waitMs);
    const QString saved = QString::fromLatin1(store->getLastResultItem().time);

    ModalBoxCloser closer;
    closer.handler = [](QWidget* box) { return answerKeyPad(box, "site-7"); };
    QTest::keyClick(&page, Qt::Key_F1);
    reader.kill();
    reader.waitForFinished(waitMs);
    QCOMPARE(closer.count(), 1);

    QProcess parser;
    parser.start("/usr/bin/python3",
        { REPORT_TABLES_SCRIPT, root.file("/home/brova/brova-rslt/opm/site-7.html") });
    QVERIFY(parser.waitForFinished(waitMs));
    QVERIFY2(parser.exitCode() == 0, parser.readAllStandardError().constData());
    const QStringList tables
        = QString::fromUtf8(parser.readAllStandardOutput()).trimmed().split("\n\n");
    QCOMPARE(tables.size(), 2);
    const QStringList info = tables[0].split('\n');
    QCOMPARE(info.size(), 4);
    QVERIFY(info[0].startsWith("Date and Time Results Were Saved:|"));
    QCOMPARE(QStringList(info.mid(1)),
        QStringList(
            { "Software Version:|Common 2.4.1", "MAC Address of Test Port:|00:1a:2b:3c:4d:a8",
                "Serial Number of Test Set:|BR-0001234" }));
    QCOMPARE(
        tables[1], "ST|WaveLenth(nm)|Test Mode|Value\n" + saved + "|1310|Power Meter|-7.250 dBm");
}

QTEST_MAIN(TestReportEndToEnd)
#include "tst_reportendtoend.moc"
