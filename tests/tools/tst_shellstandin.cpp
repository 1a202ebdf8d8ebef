// The shell stand-in run as the program it is: it refuses a plug-in file whose verification
// text is not the set's, or that is cut short, takes the demo plug-in, and presses the keys it
// is told to.
#include "qtCompat.h"

#include <QProcess>
#include <QtTest>

class TestShellStandIn : public QObject
{
    Q_OBJECT
private slots:
    void refusesPlugin_data();
    void refusesPlugin();
    void acceptsDemoPlugin();

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
    shell.start(OPMSHELL_PATH, arguments);
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
        QFile demo(DEMO_PLUGIN_PATH);
        QVERIFY(demo.open(QIODevice::ReadOnly));
        QFile cut(plugin = m_dir.path() + "/cut.so");
        QVERIFY(cut.open(QIODevice::WriteOnly));
        QVERIFY(cut.write(demo.read(demo.size() / 2)) == demo.size() / 2);
    }

    QCOMPARE(runShell(QStringList() << "--plugin" << plugin), 1);
    QVERIFY2(m_err.contains("refused") && m_err.contains(reason), qPrintable(m_err));
    QVERIFY(!m_out.contains("loaded"));
}

// Loaded, never started: stop refuses, terminate still runs; with no plug-in window yet the
// frame itself has the key.
void TestShellStandIn::acceptsDemoPlugin()
{
    const int exitCode = runShell(QStringList() << "--plugin" << DEMO_PLUGIN_PATH << "--key-at" << "0.1:ctrl+tab"
                                                << "--quit-after" << "0.2");
    QVERIFY2(exitCode == 0, qPrintable(m_err));
    QVERIFY2(m_out.contains("stop -> false\nopmshell: terminate"), qPrintable(m_out));
    QVERIFY2(m_out.contains("key Ctrl+Tab -> ShellFrame"), qPrintable(m_out));
}

QTEST_MAIN(TestShellStandIn)
#include "tst_shellstandin.moc"
