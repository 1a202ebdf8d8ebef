// The reader's start against a kill right after it. The shell returns from "<reader> &" before
// it has started the reader; a kill in between finds nothing, and two readers stay. Here the
// shell is made slow to start the reader (tests/support/slowReaderStart.cpp), as a loaded set is.
#include "opmMain.h"
#include "qtCompat.h"
#include "testSupport.h"

#include <QElapsedTimer>
#include <QtTest>

#include <cstdlib>
#include <memory>

namespace {

// While it lives, the shell takes ms to start the reader.
class SlowReaderStart
{
public:
    explicit SlowReaderStart(int ms)
    {
        setenv("SLOW_READER_START_MS", QByteArray::number(ms).constData(), 1);
        setenv("LD_PRELOAD", SLOW_READER_START_LIBRARY, 1);
    }
    ~SlowReaderStart()
    {
        unsetenv("LD_PRELOAD");
        unsetenv("SLOW_READER_START_MS");
    }
};

} // namespace

class TestReaderStart : public QObject
{
    Q_OBJECT
private slots:
    void startKillStartLeavesOneReader();
    void readerTooSlowTracedOnce();
};

// The plug-in's start (the page's start, then enterInit's kill and start) and then enterInit
// again and again, each right after the last.
void TestReaderStart::startKillStartLeavesOneReader()
{
    const int slowMs = 30;
    TestDeviceRoot root;
    QVERIFY(root.installReader());
    SlowReaderStart slow(slowMs);
    COpmMainPage page;
    for (int i = 0; i < 100; ++i) {
        page.enterInit();
        page.enterInit();
        // A start the shell has not carried out yet would show up within slowMs.
        QTest::qWait(slowMs + 10);
        QVERIFY2(root.readersSettleAt(1, 3000),
            qPrintable(QString("%1 readers after sequence %2").arg(root.runningReaders().size()).arg(i)));
    }
    QTest::qWait(3 * slowMs);
    QCOMPARE(root.runningReaders().size(), 1);
}

// A reader that takes longer than the page waits: the page goes on and says so once.
void TestReaderStart::readerTooSlowTracedOnce()
{
    TestDeviceRoot root;
    QVERIFY(root.installReader());
    std::unique_ptr<COpmMainPage> page(new COpmMainPage);
    QVERIFY(root.readersSettleAt(1, 3000));
    QElapsedTimer took;
    QByteArray trace;
    {
        SlowReaderStart slow(1500);
        StdoutCapture capture;
        took.start();
        page->enterInit();
        trace = capture.take();
    }
    const qint64 ms = took.elapsed();
    // The late reader comes all the same, and goes with the page.
    const bool came = root.readersSettleAt(1, 5000);
    page.reset();
    QVERIFY(root.readersSettleAt(0, 3000));
    QVERIFY(came);
    QVERIFY2(ms < 1000, qPrintable(QString::number(ms)));
    QCOMPARE(trace.count("no reader"), 1);
}

QTEST_MAIN(TestReaderStart)
#include "tst_readerstart.moc"
