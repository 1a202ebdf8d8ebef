// The page's boxes against the host: the shell may destroy the page, its window or the plug-in
// (with the frame it was started in) while a box of the page is open, from inside the box's
// own event loop. That must end cleanly, and the plug-in must carry on without what is gone.
// (A second press of Reference while its dialog is open: tst_opmsetup.)
#include "opmPageProbe.h"
#include "opmplugin.h"
#include "qtCompat.h"

#include <QApplication>

class TestBoxLifetime : public QObject
{
    Q_OBJECT
private slots:
    void hostEndsPageDuringBox_data();
    void hostEndsPageDuringBox();
};

void TestBoxLifetime::hostEndsPageDuringBox_data()
{
    QTest::addColumn<QString>("steps"); // on the Setup tab, the last one opens the box; or F1
    QTest::addColumn<QString>("destroy"); // what the host destroys while the box is open
    const char* const boxes[][2] = {
        { "warning box", "tick; click save" },
        { "keypad", "F1" },
        { "reference dialog", "choose mode 1; tick; click reference" },
        { "error box", "click limits; enter min 50" },
    };
    const char* const hosts[] = { "page", "window", "plug-in" };
    for (size_t b = 0; b < sizeof boxes / sizeof boxes[0]; ++b) {
        for (size_t h = 0; h < sizeof hosts / sizeof hosts[0]; ++h)
            QTest::newRow(qPrintable(QString("%1, %2").arg(boxes[b][0], hosts[h])))
                << boxes[b][1] << hosts[h];
    }
}

void TestBoxLifetime::hostEndsPageDuringBox()
{
    QFETCH(QString, steps);
    QFETCH(QString, destroy);
    TestDeviceRoot root;
    QVERIFY(root.installReader());
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    store->clearAllresultItem();
    for (int i = 0; i < CBrovaOpmDataEngine::kMaxResults; ++i) {
        Result saved = {};
        store->addResultItem(saved);
    }

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

    ModalBoxCloser closer;
    closer.handler = [&](QWidget*) {
        if (destroy == "page") {
            delete page.data();
        } else if (destroy == "window") {
            delete window.data();
        } else {
            delete plugin.data();
            delete frame.data();
        }
        return true;
    };
    if (steps == "F1")
        QTest::keyClick(page.data(), Qt::Key_F1);
    else
        OpmPageProbe::act(OpmPageProbe::m_pTableOpmSetup(page), reader, steps);
    OPM_TRY_COMPARE(closer.count(), 1, 5000);
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
    QCOMPARE(closer.count(), 1);
}

QTEST_MAIN(TestBoxLifetime)
#include "tst_boxlifetime.moc"
