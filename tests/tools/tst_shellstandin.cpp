// The shell stand-in run as the program it is: it refuses a plug-in file whose verification
// text is not the set's, or that is cut short, takes the demo plug-in, and presses the keys it
// is told to.
#include "qtCompat.h"

#include <QtTest>

class TestShellStandIn : public QObject
{
    Q_OBJECT
private slots:
    void refusesPlugin_data();
    void refusesPlugin();
    void acceptsDemoPlugin();
    void refusesKey_data();
    void refusesKey();
    void helpNamesKeyAt();

private:
    int runShell(const QStringList& arguments);

    TestCompat::TempDir m_dir;
    QString m_out;
    QString m_err;
};

// Runs the shell stand-in to its end: its exit code, or -1 when it did not end normally.
int TestShellStandIn::runShell(const QStringList& arguments)
{
    QProcess shell;
    shell.setWorkingDirectory(m_dir.path());
    shell.start(QString::fromLatin1(OPMSHELL_PATH), arguments);
    const bool ended = shell.waitForFinished(30000) && shell.exitStatus() == QProcess::NormalExit;
    m_out = QString::fromLocal8Bit(shell.readAllStandardOutput());
    m_err = QString::fromLocal8Bit(shell.readAllStandardError());
    return ended ? shell.exitCode() : -1;
}

void TestShellStandIn::refusesPlugin_data()
{
    QTest::addColumn<QString>("plugin");
    QTest::addColumn<QString>("reason");
    QTest::newRow("older Qt") << FAKE_PLUGIN_WRONGVERSION << "Qt version \"4.7.0\"";
    QTest::newRow("other build key") << FAKE_PLUGIN_WRONGBUILDKEY << "build key";
    QTest::newRow("copies differ") << FAKE_PLUGIN_SECTIONDIFFERS << "differ";
    QTest::newRow("cut short") << QString() << "outside the file";
}

void TestShellStandIn::refusesPlugin()
{
    QFETCH(QString, plugin);
    QFETCH(QString, reason);
    if (plugin.isEmpty()) {
        // The demo plug-in without its second half, where the section table lies.
        QFile demo(QString::fromLatin1(DEMO_PLUGIN_PATH));
        QVERIFY(demo.open(QIODevice::ReadOnly));
        QFile cut(plugin = m_dir.filePath(QString::fromLatin1("cut.so")));
        QVERIFY(cut.open(QIODevice::WriteOnly));
        QVERIFY(cut.write(demo.read(demo.size() / 2)) == demo.size() / 2);
    }

    QCOMPARE(runShell({ QString::fromLatin1("--plugin"), plugin }), 1);
    QVERIFY2(
        m_err.contains(QString::fromLatin1("refused")) && m_err.contains(reason), qPrintable(m_err));
    QVERIFY(!m_out.contains(QString::fromLatin1("loaded")));
}

void TestShellStandIn::acceptsDemoPlugin()
{
    const int exitCode = runShell({ QString::fromLatin1("--plugin"), QString::fromLatin1(DEMO_PLUGIN_PATH),
        QString::fromLatin1("--key-at"), QString::fromLatin1("0.1:ctrl+tab"), QString::fromLatin1("--quit-after"),
        QString::fromLatin1("0.2") });
    QVERIFY2(exitCode == 0, qPrintable(m_err));
    for (const char* identity : { "id:      com.corvaneinc.CommonUtil.NerioOpmPlugin",
             "name:    OpticalPowerMeter", "version: 1.0", "builder: CORVANE" })
        QVERIFY2(m_out.contains(QLatin1String(identity)), qPrintable(m_out));
    // Never started: stop refuses, terminate still runs.
    QVERIFY2(
        m_out.contains(QString::fromLatin1("stop -> false\nopmshell: terminate")), qPrintable(m_out));
    // No plug-in window yet: the frame itself has the key.
    QVERIFY2(m_out.contains(QString::fromLatin1("key Ctrl+Tab -> ShellFrame")), qPrintable(m_out));
}

void TestShellStandIn::refusesKey_data()
{
    QTest::addColumn<QString>("keyAt");
    QTest::newRow("unknown name") << "1:Bogus";
    QTest::newRow("two keys") << "1:F1,F2";
    QTest::newRow("no time") << "F1";
}

void TestShellStandIn::refusesKey()
{
    QFETCH(QString, keyAt);
    QCOMPARE(runShell({ QString::fromLatin1("--plugin"), QString::fromLatin1(DEMO_PLUGIN_PATH),
                 QString::fromLatin1("--key-at"), keyAt }),
        2);
    QVERIFY2(m_err.contains(QString::fromLatin1("bad --key-at")), qPrintable(m_err));
}

// Asked for before there is an application object or a display.
void TestShellStandIn::helpNamesKeyAt()
{
    QCOMPARE(runShell({ QString::fromLatin1("--help") }), 0);
    QVERIFY2(m_out.contains(QString::fromLatin1("--key-at <seconds:key>")), qPrintable(m_out));
}

OPM_TEST_GUILESS_MAIN(TestShellStandIn)
#include "tst_shellstandin.moc"
