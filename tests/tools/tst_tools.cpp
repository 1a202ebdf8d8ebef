// The tools the suites and the demo run, as the programs they are. The simulated reader in a
// device root of the test's own (also its working folder, which decides the shared record): its
// start without a wavelength asked for, and a scenario file no one should write; its live
// reading, save key, following the page and end are tst_readerfaults', a well-formed scenario
// the demo's. The shell stand-in: it refuses a plug-in file whose verification text is not the
// set's, or that is cut short, and takes the demo plug-in.
#include "opmShareRecord.h"
#include "testSupport.h"

#include <QProcess>
#include <QtTest>

#include <cstring>

class TestTools : public QObject
{
    Q_OBJECT
private slots:
    void startsAt850WithoutTarget();
    void survivesHostileScenario();
    void plugins_data();
    void plugins();

private:
    TestCompat::TempDir m_dir;
};

// Before the page has asked for a wavelength (the target not one of the five), the live reader
// measures at 850 nm.
void TestTools::startsAt850WithoutTarget()
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

// A file with every kind of bad line: binary bytes, a line of 5000 characters, an unknown field,
// a NUL in a text, control characters, an unclosed quote, a time out of range, texts longer than
// their field. Each bad line is skipped with a message, overlong texts are cut to their field
// with the NUL inside, the good lines still play, and at its end the reader says "no reading".
void TestTools::survivesHostileScenario()
{
    TestDeviceRoot root;
    RecordWriter writer;
    QVERIFY(writer.isAttached());
    const OpmShareRecord* r = writer.record();
    QByteArray lines;
    for (int i = 0; i < 300; ++i) // binary, with NULs and line ends among it
        lines += char((i * 37) & 0xff);
    lines += "\n0 value=" + QByteArray(5000, '9') + '\n';
    lines += "0 colour=red\n0 value=\"1\\x002\"\n0 value=\x01\x1b[2J\n0 value=\"-1.5\n"
             "99999999999 value=3\n"
             "0 deviceType=ABCDEFGHIJKLMNOPQRSTUVWXYZ value=-1234567890.1234567\n"
             "400 value=-1.00 flag=1\n400 end\n";
    QVERIFY(root.writeFile("/scenario.txt", lines));

    QProcess probe;
    probe.setWorkingDirectory(root.path());
    probe.start(LUMENPROBE_PATH, QStringList() << "--scenario" << root.file("/scenario.txt"));
    QVERIFY(probe.waitForFinished(20000));
    QCOMPARE(probe.exitStatus(), QProcess::NormalExit);
    QCOMPARE(probe.exitCode(), 0);
    const QByteArray errors = probe.readAllStandardError();
    QVERIFY2(errors.contains("line skipped") && errors.contains("cut"), errors.constData());
    QCOMPARE(QByteArray(r->wavelenth) + '|' + QByteArray(r->unit) + '|' + QByteArray(r->value) + '|'
                 + QByteArray::number(r->flag) + '|' + QByteArray::number(r->needSave) + '|'
                 + QByteArray(r->deviceType, int(strnlen(r->deviceType, 16))),
             QByteArray("||-1.00|0|0|ABCDEFGHIJKLMNO"));
}

void TestTools::plugins_data()
{
    addColumns<QString, int, QString>("plugin status said");
    addRow("older Qt", FAKE_PLUGIN_WRONGVERSION, 1,
           "refused: verification section refused: Qt version \"4.7.0\" is not \"4.8.4\"");
    addRow("other build key", FAKE_PLUGIN_WRONGBUILDKEY, 1,
           "refused: verification section refused: build key \"x86_64 linux");
    addRow("copies differ", FAKE_PLUGIN_SECTIONDIFFERS, 1,
           "refused: the verification data and the .qtplugin section differ");
    addRow("cut short", QString(), 1, "outside the file");
    addRow("demo plug-in", DEMO_PLUGIN_PATH, 0, "opmshell: loaded");
}

// The shell stand-in refuses a plug-in that the set's shell would refuse, saying why, and takes
// the demo plug-in.
void TestTools::plugins()
{
    QFETCH(QString, plugin);
    QFETCH(int, status);
    QFETCH(QString, said);
    if (plugin.isEmpty()) {
        // The demo plug-in without its second half, where the section table lies.
        QFile demo(DEMO_PLUGIN_PATH);
        QVERIFY(demo.open(QIODevice::ReadOnly));
        QFile cut(plugin = m_dir.path() + "/cut.so");
        QVERIFY(cut.open(QIODevice::WriteOnly));
        QVERIFY(cut.write(demo.read(demo.size() / 2)) == demo.size() / 2);
    }

    const QStringList arguments = QStringList() << "--plugin" << plugin << "--quit-after"
                                                << "0.2";
    const ProgramRun shell = runProgram(OPMSHELL_PATH, arguments, m_dir.path());
    QCOMPARE(shell.status, status);
    QVERIFY2((shell.out + shell.err).contains(said.toLatin1()), shell.err.constData());
    QCOMPARE(bool(shell.out.contains("loaded")), status == 0);
}

QTEST_MAIN(TestTools)
#include "tst_tools.moc"
