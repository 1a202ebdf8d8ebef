// The main page owns the power reader's life: one reader while the plug-in runs, none after it
// stopped or the page went. The reader is a stand-in installed in the test's own root; the
// commands reach only the readers of that root, whatever its name.
#include "opmMain.h"
#include "opmplugin.h"
#include "shellTestSupport.h"

#include <QtTest>

#include <memory>

class TestReaderControl : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void pluginStartLeavesOneReader();
    void exitCleanWithNoneRunning();
    void standAloneProgramStartsAndKillsReader();

private:
    std::unique_ptr<TestDeviceRoot> m_root;
    std::unique_ptr<ModalBoxCloser> m_boxes;
    std::unique_ptr<QWidget> m_parent;
};

void TestReaderControl::initTestCase()
{
    // The temporary roots are named after the application: blanks, quotes and shell
    // characters in their names must not trouble the commands.
    QCoreApplication::setApplicationName(QString::fromLatin1("opm root'$HOME`x`;&"));
}

void TestReaderControl::init()
{
    m_root.reset(new TestDeviceRoot);
    QVERIFY2(m_root->path().contains("opm root'$HOME`x`;&"), qPrintable(m_root->path()));
    QVERIFY(m_root->installReaderStandIn());
    m_boxes.reset(new ModalBoxCloser);
    m_parent.reset(new QWidget);
    m_parent->show();
}

void TestReaderControl::cleanup()
{
    m_parent.reset();
    m_boxes.reset();
    m_root.reset();
}

void TestReaderControl::pluginStartLeavesOneReader()
{
    QPointer<QObject> instance = qt_plugin_instance();
    auto* host = qobject_cast<UtilInterface*>(instance.data());
    QVERIFY(host);

    QVERIFY(host->start(m_parent.get()));
    QVERIFY(host->start(m_parent.get()));
    QVERIFY(readersSettleAt(*m_root, 1));
    QVERIFY(host->stop());
    QVERIFY(readersSettleAt(*m_root, 0));
    QVERIFY(host->start(m_parent.get()));
    QVERIFY(readersSettleAt(*m_root, 1));
    QCOMPARE(m_boxes->count(), 0);
    delete instance.data();
}

void TestReaderControl::exitCleanWithNoneRunning()
{
    QPointer<COpmMainPage> page = new COpmMainPage(m_parent.get());
    QVERIFY(readersSettleAt(*m_root, 1));
    page->exitClean();
    QVERIFY(readersSettleAt(*m_root, 0));

    StdoutCapture capture;
    page->exitClean();
    const QByteArray trace = capture.take();
    QCOMPARE(trace, QByteArray("COpmMainPage::exitClean \n"));
    QVERIFY(page);
    // Destroying the page after it: the kill finds nothing again.
    delete page.data();
    QCOMPARE(m_boxes->count(), 0);
    QVERIFY(readersSettleAt(*m_root, 0));
    QCOMPARE(m_root->readerStarts(), 1);
}

void TestReaderControl::standAloneProgramStartsAndKillsReader()
{
    // A reader of another root, started here: the page's kill must leave it alone.
    TestCompat::TempDir other;
    const QString otherReader = other.path() + "/usr/local/brova/bin/lumenProbe";
    QVERIFY(QDir().mkpath(QFileInfo(otherReader).path()));
    QVERIFY(QFile::copy(DevicePaths::readerProgram(), otherReader));
    QProcess foreign;
    foreign.start(otherReader, QStringList());
    QVERIFY(foreign.waitForStarted(20000));

    // What the stand-alone program does: no enterInit.
    std::unique_ptr<COpmMainPage> page(new COpmMainPage(nullptr));
    page->setGeometry(141, 61, 658, 398);
    page->show();
    QVERIFY(TestCompat::waitForShown(page.get()));
    QVERIFY(readersSettleAt(*m_root, 1));
    page.reset();
    QVERIFY(readersSettleAt(*m_root, 0));
    QCOMPARE(m_root->readerStarts(), 1);
    QCOMPARE(m_boxes->count(), 0);
    // Had the kill reached the other reader it would be gone by now; spared, this only waits.
    QVERIFY(!foreign.waitForFinished(500));
    foreign.kill();
    foreign.waitForFinished(20000);
}

QTEST_MAIN(TestReaderControl)
#include "tst_readercontrol.moc"
