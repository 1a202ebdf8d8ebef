// The plug-in as the set's shell takes it: through Qt 4's own QPluginLoader, with its checks of
// version, build key and verification data, then driven by a host frame through UtilInterface.
// The identity, the single instance and the rest of the life cycle are tst_opmplugin's, which
// runs on both toolkits.
#include "readingLabel.h"
#include "testSupport.h"
#include "utilinterface.h"

#include <QPluginLoader>
#include <QtTest>

class TestQt4Loader : public QObject
{
    Q_OBJECT
private slots:
    // Start shows the page in the host's frame and a reading appears; stop hides it and ends the
    // reader.
    void hostDrivesPlugin()
    {
        // The product file itself loads and casts; it is never started (it would work on the
        // set's paths). The one started works below the test's root.
        QPluginLoader product(OPM_PLUGIN_FILE);
        QVERIFY2(qobject_cast<UtilInterface*>(product.instance()),
                 qPrintable(product.errorString()));
        TestDeviceRoot root;
        QVERIFY(root.installReader());
        RecordWriter reader;
        qputenv("OPM_TEST_DEVICE_ROOT", QFile::encodeName(root.path()));
        QPluginLoader loader(OPM_TESTROOT_PLUGIN_FILE);
        UtilInterface* plugin = qobject_cast<UtilInterface*>(loader.instance());
        QVERIFY2(plugin, qPrintable(loader.errorString()));

        QWidget frame;
        frame.setFixedSize(800, 480);
        frame.show();
        QVERIFY(TestCompat::waitForShown(&frame));
        QVERIFY(plugin->start(&frame));
        QWidget* window = qobject_cast<QWidget*>(plugin->getObject());
        QVERIFY(window && window->isVisible());
        QCOMPARE(window->parentWidget(), &frame);
        QVERIFY(root.readersSettleAt(1));
        reader.setReading("1310", "dBm", "-12.34");
        OPM_TRY_VERIFY(readingLabel(window, "-12.340 dBm"), 2000);

        QVERIFY(plugin->stop());
        QVERIFY(!window->isVisible());
        QVERIFY(root.readersSettleAt(0));
        delete loader.instance();
    }
};

QTEST_MAIN(TestQt4Loader)
#include "tst_qt4loader.moc"
