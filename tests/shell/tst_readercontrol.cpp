// The main page owns the power reader's life: one reader while the plug-in runs, none after it
// stopped or the page went. The reader is a stand-in installed in the test's own root.
#include "opmMain.h"
#include "opmplugin.h"
#include "shellTestSupport.h"
#include "testSupport.h"

#include <QApplication>
#include <QPointer>
#include <QtTest>

#include <memory>

class TestReaderControl : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void pluginStartLeavesOneReader();
    void enterInitTwiceLeavesOneReader();
    void exitCleanWithNoneRunning();
    void destroyingPageAfterExitClean_data();
    void destroyingPageAfterExitClean();
    void standAloneProgramStartsAndKillsReader();

private:
    int visibleWindows() const;

    std::unique_ptr<TestDeviceRoot> m_root;
    std::unique_ptr<ModalBoxCloser> m_boxes;
    std::unique_ptr<QWidget> m_parent;
    QPointer<QObject> m_instance;
};

void TestReaderControl::init()
{
    m_root.reset(new TestDeviceRoot);
    QVERIFY(m_root->isValid());
    QVERIFY(m_root->installReaderStandIn());
    m_boxes.reset(new ModalBoxCloser);
    m_parent.reset(new QWidget);
    m_parent->resize(800, 480);
    m_parent->show();
}

void TestReaderControl::cleanup()
{
    delete m_instance.data();
    m_parent.reset();
    m_boxes.reset();
    m_root.reset();
}

int TestReaderControl::visibleWindows() const
{
    int count = 0;
    for (QWidget* w : QApplication::topLevelWidgets())
        count += w->isVisible() ? 1 : 0;
    return count;
}

void TestReaderControl::pluginStartLeavesOneReader()
{
    m_instance = qt_plugin_instance();
    auto* host = qobject_cast<UtilInterface*>(m_instance.data());
    QVERIFY(host);

    QVERIFY(host->start(m_parent.get()));
    QVERIFY(readersSettleAt(*m_root, 1));
    QVERIFY(host->stop());
    QVERIFY(readersSettleAt(*m_root, 0));
    QVERIFY(host->start(m_parent.get()));
    QVERIFY(readersSettleAt(*m_root, 1));
    QCOMPARE(m_boxes->count(), 0);
}

void TestReaderControl::enterInitTwiceLeavesOneReader()
{
    auto* page = new COpmMainPage(m_parent.get());
    QVERIFY(readersSettleAt(*m_root, 1));

    StdoutCapture capture;
    page->enterInit();
    page->enterInit();
    const QByteArray trace = capture.take();

    QCOMPARE(trace, QByteArray("COpmMainPage::enterInit \nCOpmMainPage::enterInit \n"));
    QVERIFY(readersSettleAt(*m_root, 1));
    QCOMPARE(m_boxes->count(), 0);
}

void TestReaderControl::exitCleanWithNoneRunning()
{
    QPointer<COpmMainPage> page = new COpmMainPage(m_parent.get());
    QVERIFY(readersSettleAt(*m_root, 1));
    page->exitClean();
    QVERIFY(readersSettleAt(*m_root, 0));
    const int windows = visibleWindows();

    StdoutCapture capture;
    page->exitClean();
    const QByteArray trace = capture.take();

    QCOMPARE(trace, QByteArray("COpmMainPage::exitClean \n"));
    QVERIFY(page);
    QCOMPARE(m_boxes->count(), 0);
    QCOMPARE(visibleWindows(), windows);
    QVERIFY(readersSettleAt(*m_root, 0));
}

void TestReaderControl::destroyingPageAfterExitClean_data()
{
    QTest::addColumn<bool>("readerRunning");
    QTest::newRow("nothing to kill") << false;
    // Someone started a reader behind the page's back: the page's end still takes it down.
    QTest::newRow("reader started since") << true;
}

void TestReaderControl::destroyingPageAfterExitClean()
{
    QFETCH(bool, readerRunning);
    auto* page = new COpmMainPage(m_parent.get());
    QVERIFY(readersSettleAt(*m_root, 1));
    page->exitClean();
    QVERIFY(readersSettleAt(*m_root, 0));
    if (readerRunning) {
        DevicePaths::runCommand(DevicePaths::startReaderCommand());
        QVERIFY(readersSettleAt(*m_root, 1));
    }

    StdoutCapture capture;
    delete page;
    const QByteArray trace = capture.take();

    QCOMPARE(countLines(trace, "COpmMainPage::~COpmMainPage "), 1);
    QCOMPARE(m_boxes->count(), 0);
    QVERIFY(readersSettleAt(*m_root, 0));
}

void TestReaderControl::standAloneProgramStartsAndKillsReader()
{
    // What the stand-alone program does, without enterInit.
    std::unique_ptr<COpmMainPage> page(new COpmMainPage(nullptr));
    page->setGeometry(141, 61, 658, 398);
    page->show();
    QVERIFY(QTest::qWaitForWindowExposed(page.get()));
    QCOMPARE(page->geometry(), QRect(141, 61, 658, 398));
    QVERIFY(readersSettleAt(*m_root, 1));
    QCOMPARE(m_root->readerStarts(), 1);

    page.reset();
    QVERIFY(readersSettleAt(*m_root, 0));
    QCOMPARE(m_root->readerStarts(), 1);
    QCOMPARE(m_boxes->count(), 0);
}

QTEST_MAIN(TestReaderControl)
#include "tst_readercontrol.moc"
