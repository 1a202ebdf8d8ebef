// The host's side of the plug-in: life cycle as the shell drives it, the export, the identity
// and the verification text in the built plug-in file.
#include "ctabwidget.h"
#include "cutilwindow.h"
#include "opmMain.h"
#include "opmShowResult.h"
#include "opmplugin.h"
#include "shellTestSupport.h"
#include "testSupport.h"

#include <QFile>
#include <QKeyEvent>
#include <QLibrary>
#include <QPointer>
#include <QtTest>

#include <elf.h>

#include <cstring>
#include <memory>

namespace {

const QByteArray kVerificationText = QByteArrayLiteral("pattern=QT_PLUGIN_VERIFICATION_DATA\n"
                                                       "version=4.8.4\n"
                                                       "debug=true\n"
                                                       "buildkey=i386 linux g++-4 full-config");

const QByteArray kCtorTrace = QByteArrayLiteral("COpmMainPage::COpmMainPage ");
const QByteArray kEnterTrace = QByteArrayLiteral("COpmMainPage::enterInit ");

template <typename Header>
bool readAt(const QByteArray& image, quint64 offset, Header* header)
{
    if (offset > quint64(image.size()) || quint64(image.size()) - offset < sizeof(Header))
        return false;
    std::memcpy(header, image.constData() + offset, sizeof(Header));
    return true;
}

// The bytes of the named section of an ELF image, as a loader that does not map the file reads
// them: through the section headers and their name table.
template <typename Ehdr, typename Shdr>
bool findSection(const QByteArray& image, const char* name, QByteArray* bytes)
{
    Ehdr eh;
    if (!readAt(image, 0, &eh) || eh.e_shentsize != sizeof(Shdr) || eh.e_shstrndx >= eh.e_shnum)
        return false;
    Shdr names;
    if (!readAt(image, eh.e_shoff + quint64(eh.e_shstrndx) * sizeof(Shdr), &names))
        return false;
    const size_t nameSize = std::strlen(name) + 1;
    for (quint64 i = 0; i < eh.e_shnum; ++i) {
        Shdr sh;
        if (!readAt(image, eh.e_shoff + i * sizeof(Shdr), &sh))
            return false;
        const quint64 at = quint64(names.sh_offset) + sh.sh_name;
        if (sh.sh_name >= names.sh_size || at + nameSize > quint64(image.size())
            || std::memcmp(image.constData() + at, name, nameSize) != 0)
            continue;
        if (quint64(sh.sh_offset) + sh.sh_size > quint64(image.size()))
            return false;
        *bytes = image.mid(int(sh.sh_offset), int(sh.sh_size));
        return true;
    }
    return false;
}

bool elfSection(const QByteArray& image, const char* name, QByteArray* bytes)
{
    if (image.size() < EI_NIDENT || std::memcmp(image.constData(), ELFMAG, SELFMAG) != 0
        || image[EI_DATA] != ELFDATA2LSB)
        return false;
    if (image[EI_CLASS] == ELFCLASS64)
        return findSection<Elf64_Ehdr, Elf64_Shdr>(image, name, bytes);
    if (image[EI_CLASS] == ELFCLASS32)
        return findSection<Elf32_Ehdr, Elf32_Shdr>(image, name, bytes);
    return false;
}

// Counts the key presses that reach a widget.
class KeyWatcher : public QObject
{
public:
    int presses = 0;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        presses += event->type() == QEvent::KeyPress ? 1 : 0;
        return false;
    }
};

QString identity(const UtilInterface* plugin, const QByteArray& operation)
{
    if (operation == "getPluginID")
        return plugin->getPluginID();
    if (operation == "getPluginName")
        return plugin->getPluginName();
    if (operation == "getPluginVersion")
        return plugin->getPluginVersion();
    if (operation == "getPluginBuilder")
        return plugin->getPluginBuilder();
    return QString();
}

} // namespace

class TestOpmPlugin : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void stopBeforeStartDoesNothing();
    void operationsBeforeStartLeaveNoWindow();
    void twoStartsMakeOneWindowAndPage();
    void stopKeepsPageAndNextStartRestartsReader();
    void terminateThenStartShowsOldWindow();
    void showHideUpdateKeepState();
    void mainPageHoldsSetupAndResult();
    void otherKeysOnlyTraceAndTravelOn();

    void instanceIsSingle();
    void castsToHostInterface_data();
    void castsToHostInterface();
    void metaObjectIsPlain();
    void identityStrings_data();
    void identityStrings();

    void verificationText();
    void builtFileSectionHoldsVerificationText();
    void builtFileExportsEntries();

private:
    UtilInterface* plugin();
    QWidget* newParent();

    std::unique_ptr<TestDeviceRoot> m_root;
    QList<QPointer<QWidget>> m_parents;
    QPointer<QObject> m_instance;
};

void TestOpmPlugin::init()
{
    m_root.reset(new TestDeviceRoot);
    QVERIFY(m_root->isValid());
    QVERIFY(m_root->installReaderStandIn());
}

void TestOpmPlugin::cleanup()
{
    delete m_instance.data();
    qDeleteAll(m_parents);
    m_parents.clear();
    m_root.reset();
}

UtilInterface* TestOpmPlugin::plugin()
{
    m_instance = qt_plugin_instance();
    return qobject_cast<UtilInterface*>(m_instance.data());
}

QWidget* TestOpmPlugin::newParent()
{
    auto* parent = new QWidget;
    parent->resize(800, 480);
    parent->show();
    m_parents << parent;
    return parent;
}

void TestOpmPlugin::stopBeforeStartDoesNothing()
{
    UtilInterface* host = plugin();
    QVERIFY(host);
    QWidget* parent = newParent();

    StdoutCapture capture;
    const bool stopped = host->stop();
    const QByteArray trace = capture.take();

    QVERIFY(!stopped);
    QVERIFY2(trace.isEmpty(), trace.constData());
    QVERIFY(!host->bIsStarted);
    QVERIFY(!host->getObject());
    QVERIFY(parent->findChildren<QWidget*>().isEmpty());
    QCOMPARE(m_root->readerStarts(), 0);
}

void TestOpmPlugin::operationsBeforeStartLeaveNoWindow()
{
    UtilInterface* host = plugin();
    QVERIFY(host);
    QVERIFY(!host->getObject());

    StdoutCapture capture;
    QVERIFY(host->bkgRun(newParent()));
    host->show();
    host->hide();
    host->update();
    host->terminate();
    host->setCallerID(7);
    const QByteArray trace = capture.take();

    QVERIFY(!host->getObject());
    QVERIFY(!host->bIsStarted);
    QCOMPARE(host->m_callerId, 7);
    QVERIFY2(trace.isEmpty(), trace.constData());
    QCOMPARE(m_root->readerStarts(), 0);
}

void TestOpmPlugin::twoStartsMakeOneWindowAndPage()
{
    UtilInterface* host = plugin();
    QWidget* parent = newParent();

    StdoutCapture capture;
    const bool first = host->start(parent);
    const bool second = host->start(parent);
    const QByteArray trace = capture.take();

    QVERIFY(first);
    QVERIFY(second);
    QVERIFY(host->bIsStarted);
    QCOMPARE(countLines(trace, kCtorTrace), 1);
    QCOMPARE(countLines(trace, kEnterTrace), 2);

    const QList<CUtilWindow*> windows = parent->findChildren<CUtilWindow*>();
    const QList<COpmMainPage*> pages = parent->findChildren<COpmMainPage*>();
    QCOMPARE(windows.size(), 1);
    QCOMPARE(pages.size(), 1);
    QCOMPARE(host->getObject(), static_cast<QObject*>(windows.first()));
    QCOMPARE(windows.first()->centralWidget(), static_cast<QWidget*>(pages.first()));
    QVERIFY(windows.first()->isVisible());
    QVERIFY(readersSettleAt(*m_root, 1));
}

void TestOpmPlugin::stopKeepsPageAndNextStartRestartsReader()
{
    UtilInterface* host = plugin();
    QWidget* parent = newParent();
    QVERIFY(host->start(parent));
    auto* window = qobject_cast<CUtilWindow*>(host->getObject());
    QVERIFY(window);
    QPointer<QWidget> page = window->centralWidget();
    QVERIFY(readersSettleAt(*m_root, 1));

    QVERIFY(host->stop());
    QVERIFY(host->bIsStarted);
    QVERIFY(!window->isVisible());
    QVERIFY(page);
    QVERIFY(readersSettleAt(*m_root, 0));

    StdoutCapture capture;
    QVERIFY(host->start(parent));
    const QByteArray trace = capture.take();
    QCOMPARE(countLines(trace, kCtorTrace), 0);
    QCOMPARE(countLines(trace, kEnterTrace), 1);
    QCOMPARE(host->getObject(), static_cast<QObject*>(window));
    QCOMPARE(window->centralWidget(), page.data());
    QVERIFY(window->isVisible());
    QVERIFY(readersSettleAt(*m_root, 1));
}

void TestOpmPlugin::terminateThenStartShowsOldWindow()
{
    UtilInterface* host = plugin();
    QWidget* firstParent = newParent();
    QWidget* otherParent = newParent();
    QVERIFY(host->start(firstParent));
    QPointer<QObject> window = host->getObject();
    QVERIFY(window);
    QVERIFY(readersSettleAt(*m_root, 1));

    host->terminate();
    QVERIFY(!host->bIsStarted);
    QVERIFY(!qobject_cast<QWidget*>(window)->isVisible());
    // Terminating leaves the reader alone; only stop and the page's end kill it.
    QVERIFY(readersSettleAt(*m_root, 1));

    QVERIFY(host->start(otherParent));
    QVERIFY(host->bIsStarted);
    QCOMPARE(host->getObject(), window.data());
    auto* shown = qobject_cast<QWidget*>(window);
    QCOMPARE(shown->parentWidget(), firstParent);
    QVERIFY(shown->isVisible());
    QVERIFY(otherParent->findChildren<QWidget*>().isEmpty());
    QCOMPARE(firstParent->findChildren<COpmMainPage*>().size(), 1);
    QVERIFY(readersSettleAt(*m_root, 1));
}

void TestOpmPlugin::showHideUpdateKeepState()
{
    UtilInterface* host = plugin();
    QVERIFY(host->start(newParent()));
    auto* window = qobject_cast<QWidget*>(host->getObject());
    QVERIFY(window);

    host->hide();
    QVERIFY(!window->isVisible());
    host->update();
    QVERIFY(!window->isVisible());
    host->show();
    QVERIFY(window->isVisible());
    QVERIFY(host->bIsStarted);

    host->terminate();
    host->show();
    QVERIFY(window->isVisible());
    QVERIFY(!host->bIsStarted);
}

void TestOpmPlugin::mainPageHoldsSetupAndResult()
{
    UtilInterface* host = plugin();
    QVERIFY(host->start(newParent()));
    auto* window = qobject_cast<CUtilWindow*>(host->getObject());
    QVERIFY(window);
    auto* page = qobject_cast<COpmMainPage*>(window->centralWidget());
    QVERIFY(page);
    auto* tabs = page->findChild<CTabWidget*>();
    QVERIFY(tabs);

    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->tabText(0), QStringLiteral("Setup"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("Result"));
    QVERIFY(qobject_cast<NerioOpm*>(tabs->widget(0)));
    QVERIFY(qobject_cast<COpmShowResultPage*>(tabs->widget(1)));
    QCOMPARE(tabs->size(), QSize(658, 398));
    QCOMPARE(page->focusPolicy(), Qt::StrongFocus);
}

void TestOpmPlugin::otherKeysOnlyTraceAndTravelOn()
{
    UtilInterface* host = plugin();
    QWidget* frame = newParent();
    QVERIFY(host->start(frame));
    auto* page = qobject_cast<CUtilWindow*>(host->getObject())->centralWidget();
    KeyWatcher watcher;
    frame->installEventFilter(&watcher);

    QTest::ignoreMessage(QtDebugMsg,
                         QRegularExpression(QStringLiteral("--------opm---------Key:65\\W*$")));
    QKeyEvent key(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
    StdoutCapture capture;
    QApplication::sendEvent(page, &key);
    const QByteArray trace = capture.take();

    QCOMPARE(trace, QByteArray("COpmMainPage::keyPressEvent 65 \n"));
    // The shell's frame sees the key too.
    QCOMPARE(watcher.presses, 1);
    QVERIFY(!key.isAccepted());
}

void TestOpmPlugin::instanceIsSingle()
{
    QObject* first = qt_plugin_instance();
    QVERIFY(first);
    QCOMPARE(qt_plugin_instance(), first);
    QCOMPARE(first->parent(), static_cast<QObject*>(nullptr));

    QPointer<QObject> old = first;
    delete first;
    QVERIFY(old.isNull());

    m_instance = qt_plugin_instance();
    QVERIFY(m_instance);
    QCOMPARE(m_instance->metaObject()->className(), "NerioOpmPlugin");
    QVERIFY(!qobject_cast<UtilInterface*>(m_instance.data())->bIsStarted);
    QCOMPARE(qt_plugin_instance(), m_instance.data());
}

void TestOpmPlugin::castsToHostInterface_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("interface id") << QByteArray("com.corvaneinc.CommonUtil.UtilInterface/1.0");
    QTest::newRow("interface name") << QByteArray("UtilInterface");
}

void TestOpmPlugin::castsToHostInterface()
{
    QFETCH(QByteArray, name);
    m_instance = qt_plugin_instance();
    auto* plugin = qobject_cast<NerioOpmPlugin*>(m_instance.data());
    QVERIFY(plugin);
    UtilInterface* expected = plugin;
    QCOMPARE(m_instance->qt_metacast(name.constData()), static_cast<void*>(expected));
    QCOMPARE(qobject_cast<UtilInterface*>(m_instance.data()), expected);
}

void TestOpmPlugin::metaObjectIsPlain()
{
    m_instance = qt_plugin_instance();
    const QMetaObject* meta = m_instance->metaObject();
    QCOMPARE(meta->className(), "NerioOpmPlugin");
    QCOMPARE(meta->superClass(), &QObject::staticMetaObject);
    QCOMPARE(meta->methodCount(), QObject::staticMetaObject.methodCount());
    QCOMPARE(meta->propertyCount(), QObject::staticMetaObject.propertyCount());
}

void TestOpmPlugin::identityStrings_data()
{
    QTest::addColumn<QByteArray>("operation");
    QTest::addColumn<QString>("expected");
    QTest::newRow("id") << QByteArray("getPluginID")
                        << QStringLiteral("com.corvaneinc.CommonUtil.NerioOpmPlugin");
    QTest::newRow("name") << QByteArray("getPluginName") << QStringLiteral("OpticalPowerMeter");
    QTest::newRow("version") << QByteArray("getPluginVersion") << QStringLiteral("1.0");
    QTest::newRow("builder") << QByteArray("getPluginBuilder") << QStringLiteral("CORVANE");
}

void TestOpmPlugin::identityStrings()
{
    QFETCH(QByteArray, operation);
    QFETCH(QString, expected);
    QCOMPARE(identity(plugin(), operation), expected);
}

void TestOpmPlugin::verificationText()
{
    const char* text = qt_plugin_query_verification_data();
    QVERIFY(text);
    QCOMPARE(QByteArray(text), kVerificationText);
    QCOMPARE(qt_plugin_query_verification_data(), text);
}

void TestOpmPlugin::builtFileSectionHoldsVerificationText()
{
    QFile file(QStringLiteral(OPM_PLUGIN_FILE));
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    QByteArray section;
    QVERIFY2(elfSection(file.readAll(), ".qtplugin", &section), "no .qtplugin section");
    // The loader reads the text up to its NUL; nothing else may share the section.
    QCOMPARE(section, kVerificationText + '\0');
}

void TestOpmPlugin::builtFileExportsEntries()
{
    // Loading the module brings its own copy of the application and the product's device
    // root: only the export and the identity are used here, never start.
    QLibrary module(QStringLiteral(OPM_PLUGIN_FILE));
    using Query = const char* (*)();
    using Instance = QObject* (*)();
    const auto query = reinterpret_cast<Query>(module.resolve("qt_plugin_query_verification_data"));
    const auto instance = reinterpret_cast<Instance>(module.resolve("qt_plugin_instance"));
    QVERIFY2(query, qPrintable(module.errorString()));
    QVERIFY2(instance, qPrintable(module.errorString()));
    QVERIFY(reinterpret_cast<void*>(instance) != reinterpret_cast<void*>(&qt_plugin_instance));

    QCOMPARE(QByteArray(query()), kVerificationText);
    QObject* root = instance();
    QVERIFY(root);
    QCOMPARE(instance(), root);
    auto* host = qobject_cast<UtilInterface*>(root);
    QVERIFY(host);
    QCOMPARE(host->getPluginName(), QStringLiteral("OpticalPowerMeter"));
    QVERIFY(!host->getObject());
    delete root;
}

QTEST_MAIN(TestOpmPlugin)
#include "tst_opmplugin.moc"
