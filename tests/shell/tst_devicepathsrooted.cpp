// The same device paths below another root, as tests and the demo use them: every path hangs
// below the root, and the shell commands still work when the root's name is awkward.
#include "devicePaths.h"
#include "shellTestSupport.h"
#include "testSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QtTest>

#include <memory>

class TestDevicePathsRooted : public QObject
{
    Q_OBJECT

private slots:
    void pathsHangBelowRoot();
    void commandsQuoteRoot();
    void commandsWorkInShell_data();
    void commandsWorkInShell();
};

void TestDevicePathsRooted::pathsHangBelowRoot()
{
    TestDeviceRoot root;
    QVERIFY(root.isValid());
    QCOMPARE(QString::fromLocal8Bit(deviceRoot()), root.path());
    QCOMPARE(DevicePaths::settingDir(), root.path() + "/home/Setting");
    QCOMPARE(DevicePaths::settingFile(), root.path() + "/home/Setting/opmSetup.conf");
    QCOMPARE(DevicePaths::resultDir(), root.path() + "/home/brova/brova-rslt/opm");
    QCOMPARE(DevicePaths::readerProgram(), root.path() + "/usr/local/brova/bin/lumenProbe");
    QCOMPARE(DevicePaths::vendorInfoFile(), root.path() + "/usr/local/brova/lib/vendor-info.txt");
}

void TestDevicePathsRooted::commandsQuoteRoot()
{
    TestDeviceRoot root;
    QVERIFY(root.isValid());
    const QByteArray base = QFile::encodeName(root.path());
    QCOMPARE(DevicePaths::makeSettingDirCommand(), "mkdir '" + base + "/home/Setting'");
    QCOMPARE(DevicePaths::startReaderCommand(), "'" + base + "/usr/local/brova/bin/lumenProbe' &");
    // Only this root's reader, by its file: never every reader of the machine.
    QCOMPARE(DevicePaths::killReaderCommand(),
             "killall -9 '" + base + "/usr/local/brova/bin/lumenProbe'");
}

void TestDevicePathsRooted::commandsWorkInShell_data()
{
    // The temporary root is named after the application.
    QTest::addColumn<QString>("rootName");
    QTest::newRow("plain") << QStringLiteral("opmroot");
    QTest::newRow("blank") << QStringLiteral("opm root");
    QTest::newRow("quote") << QStringLiteral("opm'root");
    QTest::newRow("shell characters") << QStringLiteral("opm;$HOME`x`&");
}

void TestDevicePathsRooted::commandsWorkInShell()
{
    QFETCH(QString, rootName);
    const QString appName = QCoreApplication::applicationName();
    QCoreApplication::setApplicationName(rootName);
    std::unique_ptr<TestDeviceRoot> root(new TestDeviceRoot);
    QCoreApplication::setApplicationName(appName);
    QVERIFY(root->isValid());
    QVERIFY2(root->path().contains(rootName), qPrintable(root->path()));
    QVERIFY(root->installReaderStandIn());

    DevicePaths::runCommand(DevicePaths::makeSettingDirCommand());
    QVERIFY(QDir(root->file("/home/Setting")).exists());

    DevicePaths::runCommand(DevicePaths::startReaderCommand());
    QVERIFY(readersSettleAt(*root, 1));
    DevicePaths::runCommand(DevicePaths::killReaderCommand());
    QVERIFY(readersSettleAt(*root, 0));
    QCOMPARE(root->readerStarts(), 1);
}

QTEST_GUILESS_MAIN(TestDevicePathsRooted)
#include "tst_devicepathsrooted.moc"
