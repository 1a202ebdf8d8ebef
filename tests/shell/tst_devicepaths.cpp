// The product's device paths: linked with the product's own root, as the plug-in and the
// stand-alone program are, and checked in the built product files themselves.
#include "devicePaths.h"
#include "qtCompat.h"

#include <QtTest>

class TestDevicePaths : public QObject
{
    Q_OBJECT

private slots:
    void pathsAndCommands();
    void builtFiles_data();
    void builtFiles();
};

void TestDevicePaths::pathsAndCommands()
{
    QCOMPARE(deviceRoot(), "");
    QCOMPARE(DevicePaths::settingDir(), QString::fromLatin1("/home/Setting"));
    QCOMPARE(DevicePaths::settingFile(), QString::fromLatin1("/home/Setting/opmSetup.conf"));
    QCOMPARE(DevicePaths::resultDir(), QString::fromLatin1("/home/brova/brova-rslt/opm"));
    QCOMPARE(DevicePaths::readerProgram(), QString::fromLatin1("/usr/local/brova/bin/lumenProbe"));
    QCOMPARE(DevicePaths::vendorInfoFile(), QString::fromLatin1("/usr/local/brova/lib/vendor-info.txt"));
    QCOMPARE(DevicePaths::makeSettingDirCommand(), QByteArray("mkdir /home/Setting"));
    QCOMPARE(DevicePaths::makeResultDirCommand(), QByteArray("mkdir -p /home/brova/brova-rslt/opm"));
    QCOMPARE(DevicePaths::startReaderCommand(), QByteArray("/usr/local/brova/bin/lumenProbe &"));
    QCOMPARE(DevicePaths::killReaderCommand(), QByteArray("killall -9 lumenProbe"));
}

void TestDevicePaths::builtFiles_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("product");
    QTest::newRow("plug-in") << QString::fromLatin1(OPM_PRODUCT_PLUGIN_FILE) << true;
    QTest::newRow("stand-alone program") << QString::fromLatin1(OPM_PRODUCT_PROGRAM_FILE) << true;
    // The demo build must show its root, or the scan below could not see one.
    QTest::newRow("demo plug-in") << QString::fromLatin1(OPM_DEMO_PLUGIN_FILE) << false;
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
    QCOMPARE(bool(image.contains(OPM_DEMO_ROOT_PATH)), !product);
    QVERIFY(!image.contains(OPM_READER_STAND_IN_FILE));
}

OPM_TEST_GUILESS_MAIN(TestDevicePaths)
#include "tst_devicepaths.moc"
