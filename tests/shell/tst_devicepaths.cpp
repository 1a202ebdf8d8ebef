// The product's device paths: linked with the product's own root, as the plug-in and the
// stand-alone program are, and checked in the built product files themselves.
#include "devicePaths.h"

#include <QFile>
#include <QtTest>

class TestDevicePaths : public QObject
{
    Q_OBJECT

private slots:
    void rootIsEmpty();
    void paths_data();
    void paths();
    void commands_data();
    void commands();
    void builtFiles_data();
    void builtFiles();
};

void TestDevicePaths::rootIsEmpty()
{
    QVERIFY(deviceRoot());
    QCOMPARE(deviceRoot(), "");
}

void TestDevicePaths::paths_data()
{
    QTest::addColumn<QString>("actual");
    QTest::addColumn<QString>("expected");
    QTest::newRow("setting dir") << DevicePaths::settingDir() << "/home/Setting";
    QTest::newRow("setting file") << DevicePaths::settingFile() << "/home/Setting/opmSetup.conf";
    QTest::newRow("result dir") << DevicePaths::resultDir() << "/home/brova/brova-rslt/opm";
    QTest::newRow("reader") << DevicePaths::readerProgram() << "/usr/local/brova/bin/lumenProbe";
    QTest::newRow("vendor info") << DevicePaths::vendorInfoFile()
                                 << "/usr/local/brova/lib/vendor-info.txt";
}

void TestDevicePaths::paths()
{
    QFETCH(QString, actual);
    QFETCH(QString, expected);
    QCOMPARE(actual, expected);
}

void TestDevicePaths::commands_data()
{
    QTest::addColumn<QByteArray>("actual");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("make setting dir") << DevicePaths::makeSettingDirCommand()
                                      << QByteArray("mkdir /home/Setting");
    QTest::newRow("start reader") << DevicePaths::startReaderCommand()
                                  << QByteArray("/usr/local/brova/bin/lumenProbe &");
    QTest::newRow("kill reader") << DevicePaths::killReaderCommand()
                                 << QByteArray("killall -9 lumenProbe");
}

void TestDevicePaths::commands()
{
    QFETCH(QByteArray, actual);
    QFETCH(QByteArray, expected);
    QCOMPARE(actual, expected);
}

void TestDevicePaths::builtFiles_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("product");
    QTest::newRow("plug-in") << QStringLiteral(OPM_PRODUCT_PLUGIN_FILE) << true;
    QTest::newRow("stand-alone program") << QStringLiteral(OPM_PRODUCT_PROGRAM_FILE) << true;
    // The demo build must show its root, or the scan below could not see one.
    QTest::newRow("demo plug-in") << QStringLiteral(OPM_DEMO_PLUGIN_FILE) << false;
}

void TestDevicePaths::builtFiles()
{
    QFETCH(QString, file);
    QFETCH(bool, product);
    QFile f(file);
    QVERIFY2(f.open(QIODevice::ReadOnly), qPrintable(file + ": " + f.errorString()));
    const QByteArray image = f.readAll();

    for (const char* path : { "/home/Setting", "/home/Setting/opmSetup.conf",
                              "/home/brova/brova-rslt/opm", "/usr/local/brova/bin/lumenProbe",
                              "/usr/local/brova/lib/vendor-info.txt", "lumenProbe" })
        QVERIFY2(image.contains(QByteArray(path) + '\0'), path);
    QCOMPARE(image.contains(OPM_DEMO_ROOT_PATH), !product);
    QVERIFY(!image.contains(OPM_READER_STAND_IN_FILE));
}

QTEST_GUILESS_MAIN(TestDevicePaths)
#include "tst_devicepaths.moc"
