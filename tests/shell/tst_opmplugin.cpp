// The host's side of the plug-in: its life cycle as the shell drives it, the export, the
// identity and the verification text, also as the built plug-in file holds them; and the power
// reader's life, which the main page owns: one reader while the plug-in runs, none after it
// stopped (the page's own end and a start right after a kill: tst_readerstart). The reader is a
// stand-in in the test's own root; the commands reach only the readers of that root, whatever
// its name.
#include "ctabwidget.h"
#include "cutilwindow.h"
#include "devicePaths.h"
#include "elfSection.h"
#include "opmMain.h"
#include "opmShowResult.h"
#include "opmplugin.h"
#include "testSupport.h"
#include "verificationText.h"

#include <QLibrary>
#include <QPointer>
#include <QProcess>
#include <QtTest>

#include <memory>

class TestOpmPlugin : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void nothingHappensBeforeStart();
    void startStopTerminate();
    void instanceIsSingleWithIdentity();
    void verificationText();

private:
    UtilInterface* plugin();

    std::unique_ptr<TestDeviceRoot> m_root;
    std::unique_ptr<ModalBoxCloser> m_boxes;
    std::unique_ptr<QWidget> m_parents[2]; // frames of the host's, shown
    QPointer<QObject> m_instance;
};

void TestOpmPlugin::initTestCase()
{
    // The temporary roots are named after the application: blanks, quotes and shell
    // characters in their names must not trouble the commands.
    QCoreApplication::setApplicationName("opm root'$HOME`x`;&");
}

void TestOpmPlugin::init()
{
    m_root.reset(new TestDeviceRoot);
    QVERIFY(m_root->isValid());
    QVERIFY(m_root->installReader());
    m_boxes.reset(new ModalBoxCloser);
    for (int i = 0; i < 2; ++i) {
        m_parents[i].reset(new QWidget);
        m_parents[i]->show();
    }
}

void TestOpmPlugin::cleanup()
{
    delete m_instance.data();
    QCOMPARE(m_boxes->count(), 0);
    for (int i = 0; i < 2; ++i)
        m_parents[i].reset();
    m_boxes.reset();
    m_root.reset();
}

UtilInterface* TestOpmPlugin::plugin()
{
    m_instance = qt_plugin_instance();
    return qobject_cast<UtilInterface*>(m_instance.data());
}

// Before a start the host's other calls do nothing: no trace, no window, no reader.
void TestOpmPlugin::nothingHappensBeforeStart()
{
    UtilInterface* host = plugin();
    QVERIFY(host);
    StdoutCapture capture;
    QVERIFY(host->bkgRun(m_parents[0].get()));
    host->show();
    host->hide();
    host->update();
    host->terminate();
    QVERIFY(!host->stop());
    QCOMPARE(capture.take(), QByteArray());
    QVERIFY(!host->bIsStarted && !host->getObject());
    QVERIFY(m_parents[0]->findChildren<QWidget*>().isEmpty());
    QCOMPARE(m_root->readerStarts(), 0);
}

// Two starts make one window with one page (its tabs in the set's page size) and leave one
// reader; stop leaves none, start one again; after terminate a start shows the old window. A
// reader of another root is left alone throughout.
void TestOpmPlugin::startStopTerminate()
{
    TestCompat::TempDir other;
    const QString otherReader = other.path() + "/usr/local/brova/bin/lumenProbe";
    QVERIFY(QDir().mkpath(QFileInfo(otherReader).path()));
    QVERIFY(QFile::copy(DevicePaths::readerProgram(), otherReader));
    QProcess foreign;
    foreign.start(otherReader, QStringList());
    QVERIFY(foreign.waitForStarted(20000));
    UtilInterface* host = plugin();
    QWidget* parent = m_parents[0].get();
    QVERIFY(host->start(parent));
    QVERIFY(host->start(parent));
    QVERIFY(host->bIsStarted);
    const QList<CUtilWindow*> windows = parent->findChildren<CUtilWindow*>();
    const QList<COpmMainPage*> pages = parent->findChildren<COpmMainPage*>();
    QCOMPARE(windows.size(), 1);
    QCOMPARE(pages.size(), 1);
    QCOMPARE(host->getObject(), static_cast<QObject*>(windows.first()));
    QCOMPARE(windows.first()->centralWidget(), static_cast<QWidget*>(pages.first()));
    QVERIFY(windows.first()->isVisible());
    CTabWidget* tabs = pages.first()->findChild<CTabWidget*>();
    QVERIFY(tabs && qobject_cast<NerioOpm*>(tabs->widget(0)) && qobject_cast<COpmShowResultPage*>(tabs->widget(1)));
    QCOMPARE(tabs->tabText(0) + '|' + tabs->tabText(1) + '|' + tabs->tabText(2), QString("Setup|Result|"));
    QCOMPARE(tabs->size(), QSize(658, 398));
    QVERIFY(m_root->readersSettleAt(1));

    QVERIFY(host->stop());
    QVERIFY(!windows.first()->isVisible());
    QVERIFY(m_root->readersSettleAt(0));
    QVERIFY(host->start(parent));
    QVERIFY(m_root->readersSettleAt(1));

    host->terminate();
    QVERIFY(!host->bIsStarted);
    QVERIFY(!windows.first()->isVisible());
    QVERIFY(host->start(m_parents[1].get()));
    QCOMPARE(host->getObject(), static_cast<QObject*>(windows.first()));
    QCOMPARE(windows.first()->parentWidget(), parent);
    QVERIFY(windows.first()->isVisible());
    QVERIFY(m_parents[1]->findChildren<QWidget*>().isEmpty());
    QVERIFY(m_root->readersSettleAt(1));
    // Had a kill reached the other reader it would be gone by now; spared, this only waits.
    QVERIFY(!foreign.waitForFinished(500));
    foreign.kill();
    foreign.waitForFinished(20000);
}

// The one place the identity is compared, exactly.
void TestOpmPlugin::instanceIsSingleWithIdentity()
{
    QObject* first = qt_plugin_instance();
    QCOMPARE(qt_plugin_instance(), first);
    // The host casts the root object by the interface id.
    UtilInterface* expected = qobject_cast<NerioOpmPlugin*>(first);
    QVERIFY(expected);
    QCOMPARE(first->qt_metacast("com.corvaneinc.CommonUtil.UtilInterface/1.0"), static_cast<void*>(expected));
    QCOMPARE(expected->getPluginID() + '|' + expected->getPluginName() + '|' + expected->getPluginVersion() + '|'
                     + expected->getPluginBuilder(),
             QString("com.corvaneinc.CommonUtil.NerioOpmPlugin|OpticalPowerMeter|1.0|CORVANE"));

    // Once the object is gone the export makes a new one instead of handing out the old.
    delete first;
    m_instance = qt_plugin_instance();
    QVERIFY(qobject_cast<UtilInterface*>(m_instance.data()));
    QCOMPARE(qt_plugin_instance(), m_instance.data());
}

// The text the shell accepts, the same through the function and in the section of the built
// file, where the shell's loader reads it: the text and its NUL, nothing else.
void TestOpmPlugin::verificationText()
{
    const QByteArray text(qt_plugin_query_verification_data());
    std::string error;
    QVERIFY2(PluginVerify::checkVerificationText(text.constData(), &error), error.c_str());

    std::vector<char> section;
    QVERIFY2(PluginVerify::readElfSection(OPM_PLUGIN_FILE, ".qtplugin", &section, &error), error.c_str());
    QCOMPARE(QByteArray(section.data(), int(section.size())), text + '\0');

    QLibrary module(OPM_PLUGIN_FILE);
    typedef const char* (*Query)();
    const Query query = reinterpret_cast<Query>(module.resolve("qt_plugin_query_verification_data"));
    QVERIFY2(query, qPrintable(module.errorString()));
    QVERIFY(reinterpret_cast<void*>(query) != reinterpret_cast<void*>(&qt_plugin_query_verification_data));
    QCOMPARE(QByteArray(query()), text);
}

QTEST_MAIN(TestOpmPlugin)
#include "tst_opmplugin.moc"
