// The host's side of the plug-in: its life cycle as the shell drives it, the export, the
// identity and the verification text, also as the built plug-in file holds them.
#include "ctabwidget.h"
#include "cutilwindow.h"
#include "elfSection.h"
#include "opmMain.h"
#include "opmShowResult.h"
#include "opmplugin.h"
#include "shellTestSupport.h"

#include <QtTest>

#include <memory>

static const QByteArray kVerificationText("pattern=QT_PLUGIN_VERIFICATION_DATA\nversion=4.8.4\n"
                                          "debug=true\nbuildkey=i386 linux g++-4 full-config");

class TestOpmPlugin : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void nothingHappensBeforeStart();
    void twoStartsMakeOneWindowAndPage();
    void terminateThenStartShowsOldWindow();
    void instanceIsSingleWithIdentity();
    void verificationTextInFunctionAndBuiltFile();

private:
    UtilInterface* plugin();

    std::unique_ptr<TestDeviceRoot> m_root;
    std::unique_ptr<QWidget> m_parents[2]; // frames of the host's, shown
    QPointer<QObject> m_instance;
};

void TestOpmPlugin::init()
{
    m_root.reset(new TestDeviceRoot);
    QVERIFY(m_root->isValid());
    QVERIFY(m_root->installReaderStandIn());
    for (auto& parent : m_parents) {
        parent.reset(new QWidget);
        parent->show();
    }
}

void TestOpmPlugin::cleanup()
{
    delete m_instance.data();
    for (auto& parent : m_parents)
        parent.reset();
    m_root.reset();
}

UtilInterface* TestOpmPlugin::plugin()
{
    m_instance = qt_plugin_instance();
    return qobject_cast<UtilInterface*>(m_instance.data());
}

void TestOpmPlugin::nothingHappensBeforeStart()
{
    UtilInterface* host = plugin();
    QVERIFY(host);
    QWidget* parent = m_parents[0].get();
    QVERIFY(!host->getObject());

    StdoutCapture capture;
    const bool background = host->bkgRun(parent);
    host->show();
    host->hide();
    host->update();
    host->terminate();
    const bool stopped = host->stop();
    const QByteArray trace = capture.take();

    QVERIFY(background);
    QVERIFY(!stopped);
    QVERIFY2(trace.isEmpty(), trace.constData());
    QVERIFY(!host->bIsStarted);
    QVERIFY(!host->getObject());
    QVERIFY(parent->findChildren<QWidget*>().isEmpty());
    QCOMPARE(m_root->readerStarts(), 0);
}

void TestOpmPlugin::twoStartsMakeOneWindowAndPage()
{
    UtilInterface* host = plugin();
    QWidget* parent = m_parents[0].get();

    StdoutCapture capture;
    const bool first = host->start(parent);
    const bool second = host->start(parent);
    const QByteArray trace = capture.take();

    QVERIFY(first);
    QVERIFY(second);
    QVERIFY(host->bIsStarted);
    QCOMPARE(trace.split('\n').count("COpmMainPage::COpmMainPage "), 1);
    QCOMPARE(trace.split('\n').count("COpmMainPage::enterInit "), 2);
    const QList<CUtilWindow*> windows = parent->findChildren<CUtilWindow*>();
    const QList<COpmMainPage*> pages = parent->findChildren<COpmMainPage*>();
    QCOMPARE(windows.size(), 1);
    QCOMPARE(pages.size(), 1);
    QCOMPARE(host->getObject(), static_cast<QObject*>(windows.first()));
    QCOMPARE(windows.first()->centralWidget(), static_cast<QWidget*>(pages.first()));
    QVERIFY(windows.first()->isVisible());
    auto* tabs = pages.first()->findChild<CTabWidget*>();
    QVERIFY(tabs && qobject_cast<NerioOpm*>(tabs->widget(0))
        && qobject_cast<COpmShowResultPage*>(tabs->widget(1)));
    QCOMPARE(tabs->tabText(0) + '|' + tabs->tabText(1) + '|' + tabs->tabText(2),
        QString::fromLatin1("Setup|Result|"));
    QCOMPARE(tabs->size(), QSize(658, 398));
    QVERIFY(readersSettleAt(*m_root, 1));
}

void TestOpmPlugin::terminateThenStartShowsOldWindow()
{
    UtilInterface* host = plugin();
    QWidget* firstParent = m_parents[0].get();
    QWidget* otherParent = m_parents[1].get();
    QVERIFY(host->start(firstParent));
    QPointer<QWidget> window = qobject_cast<QWidget*>(host->getObject());
    QVERIFY(window);

    host->terminate();
    QVERIFY(!host->bIsStarted);
    QVERIFY(!window->isVisible());

    QVERIFY(host->start(otherParent));
    QVERIFY(host->bIsStarted);
    QCOMPARE(host->getObject(), static_cast<QObject*>(window.data()));
    QCOMPARE(window->parentWidget(), firstParent);
    QVERIFY(window->isVisible());
    QVERIFY(otherParent->findChildren<QWidget*>().isEmpty());
    QCOMPARE(firstParent->findChildren<COpmMainPage*>().size(), 1);
    QVERIFY(readersSettleAt(*m_root, 1));
}

void TestOpmPlugin::instanceIsSingleWithIdentity()
{
    QObject* first = qt_plugin_instance();
    QVERIFY(first);
    QCOMPARE(qt_plugin_instance(), first);
    // The host casts the root object by the interface id.
    UtilInterface* expected = qobject_cast<NerioOpmPlugin*>(first);
    QVERIFY(expected);
    QCOMPARE(first->qt_metacast("com.corvaneinc.CommonUtil.UtilInterface/1.0"),
        static_cast<void*>(expected));
    QCOMPARE(expected->getPluginID(), QString::fromLatin1("com.corvaneinc.CommonUtil.NerioOpmPlugin"));
    QCOMPARE(expected->getPluginName(), QString::fromLatin1("OpticalPowerMeter"));
    QCOMPARE(expected->getPluginVersion(), QString::fromLatin1("1.0"));
    QCOMPARE(expected->getPluginBuilder(), QString::fromLatin1("CORVANE"));

    // Once the object is gone the export makes a new one instead of handing out the old.
    delete first;
    m_instance = qt_plugin_instance();
    QVERIFY(qobject_cast<UtilInterface*>(m_instance.data()));
    QCOMPARE(qt_plugin_instance(), m_instance.data());
}

void TestOpmPlugin::verificationTextInFunctionAndBuiltFile()
{
    QCOMPARE(QByteArray(qt_plugin_query_verification_data()), kVerificationText);

    // The section as the shell's loader reads it: the text and its NUL, nothing else.
    std::vector<char> section;
    std::string error;
    QVERIFY2(PluginVerify::readElfSection(OPM_PLUGIN_FILE, ".qtplugin", &section, &error),
        error.c_str());
    QCOMPARE(QByteArray(section.data(), int(section.size())), kVerificationText + '\0');

    // What the built file exports, as the host calls it.
    QLibrary module(QString::fromLatin1(OPM_PLUGIN_FILE));
    const auto query
        = reinterpret_cast<const char* (*)()>(module.resolve("qt_plugin_query_verification_data"));
    QVERIFY2(query, qPrintable(module.errorString()));
    QVERIFY(reinterpret_cast<void*>(query)
        != reinterpret_cast<void*>(&qt_plugin_query_verification_data));
    QCOMPARE(QByteArray(query()), kVerificationText);
}

QTEST_MAIN(TestOpmPlugin)
#include "tst_opmplugin.moc"
