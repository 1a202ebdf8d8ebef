// The host's side of the plug-in: its life cycle as the shell drives it, the export and the
// identity (the verification text is tst_tools': the shell stand-in checks it, through the
// function and in the built file's section, as the set's shell does); the power reader's life,
// which the main page owns: one reader while the plug-in runs, none after it stopped or the page
// went, also with a kill right after a slow start; and the host destroying the page while one
// of its boxes is open. The reader is a stand-in in the test's own root; the commands reach
// only the readers of that root, whatever its name.
#include "ctabwidget.h"
#include "cutilwindow.h"
#include "devicePaths.h"
#include "opmPageProbe.h"
#include "opmplugin.h"

#include <QPointer>
#include <QProcess>

#include <cstdlib>
#include <memory>

namespace {

// The library goes into the system's shell only where both are built for the same word size
// (not in the 32-bit set build run on a 64-bit PC).
bool shellTakesLibrary()
{
    QFile shell("/bin/sh"), library(SLOW_READER_START_LIBRARY);
    return shell.open(QIODevice::ReadOnly) && library.open(QIODevice::ReadOnly)
        && shell.read(5).right(1) == library.read(5).right(1);
}

} // namespace

class TestOpmPlugin : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        // The temporary roots are named after the application: blanks, quotes and shell
        // characters in their names must not trouble the commands.
        QCoreApplication::setApplicationName("opm root'$HOME`x`;&");
        m_root.reset(new TestDeviceRoot);
        QVERIFY(m_root->isValid());
        QVERIFY(m_root->installReader());
        m_boxes.reset(new ModalBoxCloser);
    }
    void cleanup()
    {
        unsetenv("LD_PRELOAD");
        unsetenv("SLOW_READER_START_MS");
        delete m_instance.data();
        m_boxes.reset();
        m_root.reset();
    }

    // The export hands out one object, and a new one once that is gone; the host casts it by the
    // interface's id, and the identity is compared here alone, exactly. Before a start the host's
    // other calls do nothing: no window, no reader, and stop answers false. Two starts make one
    // window with one page (its tabs in the set's page size) and leave one reader; stop leaves
    // none, start one again; after terminate a start shows the old window under its first frame. A
    // reader of another root is left alone throughout.
    void hostContract()
    {
        QObject* first = qt_plugin_instance();
        QCOMPARE(qt_plugin_instance(), first);
        delete first;
        m_instance = qt_plugin_instance();
        QCOMPARE(qt_plugin_instance(), m_instance.data());
        NerioOpmPlugin* plugin = qobject_cast<NerioOpmPlugin*>(m_instance.data());
        QVERIFY(plugin);
        UtilInterface* host = plugin;
        QCOMPARE(m_instance->qt_metacast("com.corvaneinc.CommonUtil.UtilInterface/1.0"),
                 static_cast<void*>(host));
        QCOMPARE(host->getPluginID() + '|' + host->getPluginName() + '|' + host->getPluginVersion()
                     + '|' + host->getPluginBuilder(),
                 QString("com.corvaneinc.CommonUtil.NerioOpmPlugin|OpticalPowerMeter|1.0|CORVANE"));

        QWidget parent, otherParent; // frames of the host's
        parent.show();
        QVERIFY(host->bkgRun(&parent));
        host->show();
        host->hide();
        host->update();
        host->terminate();
        QVERIFY(!host->stop());
        QVERIFY(!host->bIsStarted && !host->getObject());
        QVERIFY(m_root->readFile("/reader-starts").isEmpty());

        TestCompat::TempDir other;
        const QString otherReader = other.path() + "/usr/local/brova/bin/lumenProbe";
        QVERIFY(QDir().mkpath(QFileInfo(otherReader).path()));
        QVERIFY(QFile::copy(DevicePaths::readerProgram(), otherReader));
        QProcess foreign;
        foreign.start(otherReader, QStringList());
        QVERIFY(foreign.waitForStarted(20000));
        QVERIFY(host->start(&parent));
        QVERIFY(host->start(&parent));
        QCOMPARE(parent.findChildren<CUtilWindow*>().size(), 1);
        QCOMPARE(parent.findChildren<COpmMainPage*>().size(), 1);
        CUtilWindow* window = parent.findChild<CUtilWindow*>();
        QCOMPARE(host->getObject(), static_cast<QObject*>(window));
        COpmMainPage* page = qobject_cast<COpmMainPage*>(window->centralWidget());
        QVERIFY(page && window->isVisible());
        CTabWidget* tabs = page->findChild<CTabWidget*>();
        QVERIFY(tabs && qobject_cast<NerioOpm*>(tabs->widget(0))
                && qobject_cast<COpmShowResultPage*>(tabs->widget(1)));
        QCOMPARE(tabs->tabText(0) + '|' + tabs->tabText(1) + '|' + tabs->tabText(2),
                 QString("Setup|Result|"));
        QCOMPARE(tabs->size(), QSize(658, 398));
        QVERIFY(m_root->readersSettleAt(1));

        QVERIFY(host->stop());
        QVERIFY(!window->isVisible());
        QVERIFY(m_root->readersSettleAt(0));
        QVERIFY(host->start(&parent));
        QVERIFY(m_root->readersSettleAt(1));

        host->terminate();
        QVERIFY(!host->bIsStarted);
        QVERIFY(!window->isVisible());
        QVERIFY(host->start(&otherParent));
        QCOMPARE(host->getObject(), static_cast<QObject*>(window));
        QCOMPARE(window->parentWidget(), &parent);
        QVERIFY(window->isVisible());
        QVERIFY(m_root->readersSettleAt(1));
        QCOMPARE(m_boxes->count(), 0);
        // Had a kill reached the other reader it would be gone by now; spared, this only waits.
        QVERIFY(!foreign.waitForFinished(500));
        foreign.kill();
        foreign.waitForFinished(20000);
    }
    // A shell slow to start the reader. The plug-in's start (the page's start, then enterInit's
    // kill and start) and then enterInit again and again, each right after the last, leave one
    // reader. A reader that takes longer than the page waits: the page goes on without it (it is
    // not there yet when the start returns) and says so once; the late reader comes all the same,
    // and goes with the page.
    void slowReaderStarts()
    {
        if (!shellTakesLibrary())
            OPM_SKIP("the system's shell cannot take the slow-start library here");
        // From here until cleanup(), the shell takes slowMs to start the reader.
        const int slowMs = 30;
        setenv("SLOW_READER_START_MS", QByteArray::number(slowMs).constData(), 1);
        setenv("LD_PRELOAD", SLOW_READER_START_LIBRARY, 1);
        std::unique_ptr<COpmMainPage> page(new COpmMainPage);
        for (int i = 0; i < 40; ++i) {
            page->enterInit();
            page->enterInit();
            // A start the shell has not carried out yet would show up within slowMs.
            QTest::qWait(slowMs + 10);
            QVERIFY2(m_root->readersSettleAt(1),
                     qPrintable(QString("%1 readers after sequence %2")
                                    .arg(m_root->runningReaders().size())
                                    .arg(i)));
        }

        setenv("SLOW_READER_START_MS", "3000", 1);
        StdoutCapture capture;
        page->enterInit();
        const int atReturn = m_root->runningReaders().size();
        QCOMPARE(capture.take().count("no reader"), 1);
        QCOMPARE(atReturn, 0);
        QVERIFY(m_root->readersSettleAt(1));
        page.reset();
        QVERIFY(m_root->readersSettleAt(0));
    }
    void hostEndsPageDuringBox_data()
    {
        // box: the warning of a full store, the keypad of F1, the reference dialog, a limit's
        // error; destroyed: what the host destroys while the box is open
        addColumns<int, int>("box destroyed");
        const char* const boxes[] = { "warning box", "keypad", "reference dialog", "error box" };
        const char* const hosts[] = { "page", "window", "plug-in" };
        for (int b = 0; b < 4; ++b)
            for (int h = 0; h < 3; ++h)
                addRow(QString("%1, %2").arg(boxes[b], hosts[h]), b, h);
    }
    // The page's boxes against the host: the shell may destroy the page, its window or the plug-in
    // (with the frame it was started in) while a box of the page is open, from inside the box's
    // own event loop. That must end cleanly, and the plug-in must carry on without what is gone.
    void hostEndsPageDuringBox()
    {
        QFETCH(int, box);
        QFETCH(int, destroyed);
        CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
        store->clearAllresultItem();
        Result saved = {};
        for (int i = 0; i < CBrovaOpmDataEngine::kMaxResults; ++i)
            store->addResultItem(saved);

        QPointer<QWidget> frame = new QWidget;
        frame->show();
        QPointer<QObject> plugin = qt_plugin_instance();
        UtilInterface* host = qobject_cast<UtilInterface*>(plugin.data());
        QVERIFY(host && host->start(frame));
        QPointer<QWidget> window = qobject_cast<QWidget*>(host->getObject());
        QPointer<COpmMainPage> page = window->findChild<COpmMainPage*>();
        QVERIFY(page);
        RecordWriter reader;
        reader.setReading("1310", "dBm", "-5");

        QObject* const victims[] = { page, window, frame };
        m_boxes->handler = [&](QWidget*) {
            if (destroyed == 2)
                delete plugin.data();
            delete victims[destroyed];
            return true;
        };
        using P = OpmPageProbe;
        NerioOpm* setup = P::setupTab(page);
        if (box == 0) {
            P::tick(setup);
            P::click(setup, P::Save);
        } else if (box == 1) {
            QTest::keyClick(page.data(), Qt::Key_F1);
        } else if (box == 2) {
            P::choose(setup, P::Mode, 1);
            P::tick(setup);
            P::click(setup, P::Reference);
        } else {
            P::click(setup, P::Limits);
            P::enter(setup, P::Min, "50");
        }
        OPM_TRY_COMPARE(m_boxes->count(), 1, 20000);
        QCoreApplication::sendPostedEvents(0, QEvent::DeferredDelete);
        QVERIFY(!page);
        QVERIFY(!QApplication::activeModalWidget());
        // The export was given up with its page: no report.
        QVERIFY(QDir(DevicePaths::resultDir()).entryList(QDir::Files).isEmpty());

        if (plugin) {
            // The plug-in must not reach for what the host destroyed, and builds it anew.
            QVERIFY(host->stop());
            host->terminate();
            QVERIFY(host->start(frame));
            QWidget* newWindow = qobject_cast<QWidget*>(host->getObject());
            QVERIFY(newWindow && newWindow->findChild<COpmMainPage*>());
            delete plugin.data();
        }
        delete frame.data();
        QCoreApplication::sendPostedEvents(0, QEvent::DeferredDelete);
        QCOMPARE(m_boxes->count(), 1);
    }

private:
    std::unique_ptr<TestDeviceRoot> m_root;
    std::unique_ptr<ModalBoxCloser> m_boxes;
    QPointer<QObject> m_instance;
};

QTEST_MAIN(TestOpmPlugin)
#include "tst_opmplugin.moc"
