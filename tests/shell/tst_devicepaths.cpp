// The product's device paths: linked with the product's own root, as the plug-in and the
// stand-alone program are, and looked for in the built product files themselves.
#include "devicePaths.h"

#include <QFile>
#include <QtTest>

class TestDevicePaths : public QObject
{
    Q_OBJECT

private slots:
    // The set has one reader: the product starts it at its place under "/" and kills it by its
    // program's name, wherever it was started from (a test's or the demo's root kills by path
    // instead, so that they never kill each other's).
    void readerCommands()
    {
        QCOMPARE(DevicePaths::startReaderCommand() + '|' + DevicePaths::killReaderCommand(),
                 QByteArray("/usr/local/brova/bin/lumenProbe &|killall -9 lumenProbe"));
    }
    void builtFiles_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("product");
        QTest::newRow("plug-in") << OPM_PRODUCT_PLUGIN_FILE << true;
        QTest::newRow("stand-alone program") << OPM_PRODUCT_PROGRAM_FILE << true;
        // The demo build must show its root, or the scan below could not see one.
        QTest::newRow("demo plug-in") << OPM_DEMO_PLUGIN_FILE << false;
    }
    // The product's files are linked with no other root, and with nothing of the tests.
    void builtFiles()
    {
        QFETCH(QString, file);
        QFETCH(bool, product);
        QFile f(file);
        QVERIFY2(f.open(QIODevice::ReadOnly), qPrintable(file + ": " + f.errorString()));
        const QByteArray image = f.readAll();
        QVERIFY(image.contains("/usr/local/brova/bin/lumenProbe"));
        QCOMPARE(bool(image.contains(OPM_DEMO_ROOT_PATH)), !product); // QBool in Qt 4
        QVERIFY(!image.contains(OPM_READER_STAND_IN_FILE));
    }
};

QTEST_APPLESS_MAIN(TestDevicePaths)
#include "tst_devicepaths.moc"
