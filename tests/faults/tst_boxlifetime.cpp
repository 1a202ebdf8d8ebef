// A second press of Reference while its dialog is open must not replace the dialog.
#include "opmPageProbe.h"

class TestBoxLifetime : public QObject
{
    Q_OBJECT
private slots:
    void secondReferencePress();
};

void TestBoxLifetime::secondReferencePress()
{
    TestDeviceRoot root;
    RecordWriter reader;
    CBrovaOpmDataEngine::getSingleInstance()->clearAllresultItem();
    NerioOpm page;
    OpmPageProbe::act(&page, reader, "choose mode 1; show 1310 -12.34; click reference");
    QPointer<CDialog> open = OpmPageProbe::m_pReferenceDialog(&page);
    QVERIFY(open && open->isVisible());

    OpmPageProbe::act(&page, reader, "show 1310 -20; click reference");
    QCoreApplication::sendPostedEvents(0, QEvent::DeferredDelete);
    QCOMPARE(OpmPageProbe::m_pReferenceDialog(&page), open.data());
    QCOMPARE(page.findChildren<CDialog*>().size(), 1);
    QVERIFY(open->isVisible());

    // Set still answers the dialog on screen, with the reading of the first press.
    OpmPageProbe::act(&page, reader, "click set");
    QCoreApplication::sendPostedEvents(0, QEvent::DeferredDelete);
    QVERIFY(page.findChildren<CDialog*>().isEmpty());
    const Keys state = OpmPageProbe::state(&page);
    QCOMPARE(state.value("refs"), QString("0 -12.34 0 0 0"));
    QCOMPARE(state.value("capture"), QString("-12.34/0"));
}

QTEST_MAIN(TestBoxLifetime)
#include "tst_boxlifetime.moc"
