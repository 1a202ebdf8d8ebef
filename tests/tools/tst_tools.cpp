// The tools the suites and the demo run, as the programs they are. The simulated reader in a
// device root of the test's own (also its working folder, which decides the shared record): its
// start without a wavelength asked for, and a scenario file no one should write; its live
// reading, save key, following the page and end are tst_readerfaults', a well-formed scenario
// the demo's. The shell stand-in: it refuses a plug-in file whose verification text is not the
// set's, or that is cut short, and takes the demo plug-in.
#include "opmShareRecord.h"
#include "testSupport.h"

#include <QtTest>

#include <cstring>

class TestTools : public QObject
{
    Q_OBJECT
private slots:
    // Before the page has asked for a wavelength (the target not one of the five), the live reader
    // measures at 850 nm.
    void startsAt850WithoutTarget()
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
    // After a good first line, every kind of bad line: longer than 1024 characters, an unknown
    // field, a NUL in a text, control characters, an unclosed quote, binary bytes with a NUL, a
    // time out of range. Each is skipped with a message, so the first line's reading stays; an
    // overlong text is cut to its field with the NUL inside; at its end the reader says "no
    // reading".
    void survivesHostileScenario()
    {
        TestDeviceRoot root;
        RecordWriter writer;
        const OpmShareRecord* r = writer.record();
        const QByteArray lines =
            "0 deviceType=ABCDEFGHIJKLMNOPQRSTUVWXYZ value=-1.00 flag=1\n400 value="
            + QByteArray(5000, '9')
            + "\n400 colour=red value=2\n400 value=\"1\\x002\"\n400 value=\x01\x1b[2J\n"
              "400 value=\"-1.5\n"
            + QByteArray("400 value=\xe9\0\x9f\n", 14) + "99999999999 value=3\n400 end\n";
        QVERIFY(root.writeFile("/scenario.txt", lines));

        QProcess probe;
        probe.setWorkingDirectory(root.path());
        probe.start(LUMENPROBE_PATH, QStringList() << "--scenario" << root.file("/scenario.txt"));
        QVERIFY(probe.waitForFinished(20000));
        QCOMPARE(probe.exitStatus(), QProcess::NormalExit);
        QCOMPARE(probe.exitCode(), 0);
        const QByteArray errors = probe.readAllStandardError();
        QCOMPARE(errors.count("line skipped"), 7);
        QCOMPARE(errors.count(", cut"), 1);
        QCOMPARE(QByteArray(r->value) + '|' + QByteArray::number(r->flag) + '|'
                     + QByteArray(r->deviceType, int(strnlen(r->deviceType, 16))),
                 QByteArray("-1.00|0|ABCDEFGHIJKLMNO"));
    }
    void plugins_data()
    {
        addColumns<QString, int, QString>("plugin status said");
        addRow("older Qt", FAKE_PLUGIN_WRONGVERSION, 1,
               "refused: verification section refused: Qt version \"4.7.0\" is not \"4.8.4\"");
        addRow("other build key", FAKE_PLUGIN_WRONGBUILDKEY, 1,
               "refused: verification section refused: build key \"x86_64 linux");
        addRow("copies differ", FAKE_PLUGIN_SECTIONDIFFERS, 1,
               "refused: the verification data and the .qtplugin section differ");
        addRow("cut short", m_dir.path() + "/cut.so", 1, "outside the file");
        addRow("demo plug-in", DEMO_PLUGIN_PATH, 0, "opmshell: loaded");
    }
    // The shell stand-in refuses a plug-in that the set's shell would refuse, saying why, and takes
    // the demo plug-in.
    void plugins()
    {
        QFETCH(QString, plugin);
        QFETCH(int, status);
        QFETCH(QString, said);
        // The demo plug-in without its second half, where the section table lies.
        if (plugin.endsWith("/cut.so"))
            QVERIFY(QFile::copy(DEMO_PLUGIN_PATH, plugin)
                    && QFile::resize(plugin, QFileInfo(plugin).size() / 2));

        const ProgramRun shell = runProgram(OPMSHELL_PATH,
                                            QStringList() << "--plugin" << plugin << "--quit-after"
                                                          << "0.2",
                                            m_dir.path());
        QCOMPARE(shell.status, status);
        QVERIFY2((shell.out + shell.err).contains(said.toLatin1()), shell.err.constData());
    }

private:
    TestCompat::TempDir m_dir;
};

QTEST_MAIN(TestTools)
#include "tst_tools.moc"
