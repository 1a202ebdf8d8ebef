// The plug-in as the set's shell takes it: through Qt 4's own QPluginLoader, with its checks of
// version, build key and verification data, then driven by a host frame through UtilInterface.
#include "readingLabel.h"
#include "testSupport.h"
#include "utilinterface.h"

#include <QPluginLoader>
#include <QtTest>

class TestQt4Loader : public QObject
{
    Q_OBJECT

private slots:
    void productPluginLoads();
    void hostDrivesPlugin();
};

// The product file itself: loaded and cast, never started (it would work on the set's paths). Its
// identity and the single instance are tst_opmplugin's, which runs on both toolkits.
void TestQt4Loader::productPluginLoads()
{
    QPluginLoader loader(QString::fromLatin1(OPM_PLUGIN_FILE));
    QVERIFY2(loader.load(), qPrintable(loader.errorString()));
    QObject* root = loader.instance();
    QVERIFY(root);
    QCOMPARE(QByteArray(root->metaObject()->className()), QByteArray("NerioOpmPlugin"));
    QVERIFY(qobject_cast<UtilInterface*>(root));
}

// Start shows the page in the host's frame and a reading appears; stop hides it and ends the
// reader (the rest of the life cycle is tst_opmplugin's, which runs on both toolkits).
void TestQt4Loader::hostDrivesPlugin()
{
    TestDeviceRoot root;
    QVERIFY(root.isValid());
    QVERIFY(root.installReader());
    RecordWriter reader;
    qputenv("OPM_TEST_DEVICE_ROOT", QFile::encodeName(root.path()));

    QPluginLoader loader(QString::fromLatin1(OPM_TESTROOT_PLUGIN_FILE));
    QVERIFY2(loader.load(), qPrintable(loader.errorString()));
    QPointer<QObject> instance = loader.instance();
    UtilInterface* plugin = qobject_cast<UtilInterface*>(instance.data());
    QVERIFY(plugin);

    QWidget frame;
    frame.setFixedSize(800, 480);
    frame.show();
    QVERIFY(TestCompat::waitForShown(&frame));
    QVERIFY(plugin->start(&frame));
    QWidget* window = qobject_cast<QWidget*>(plugin->getObject());
    QVERIFY(window);
    QCOMPARE(window->parentWidget(), &frame);
    QVERIFY(window->isVisible());
    QVERIFY(frame.rect().contains(window->geometry()));
    QVERIFY(root.readersSettleAt(1));

    reader.setReading("1310", "dBm", "-12.34");
    OPM_TRY_VERIFY(readingLabel(window, QString::fromLatin1("-12.340 dBm")), 2000);

    QVERIFY(plugin->stop());
    QVERIFY(!window->isVisible());
    QVERIFY(root.readersSettleAt(0));
    delete instance.data();
}

QTEST_MAIN(TestQt4Loader)
#include "tst_qt4loader.moc"
