// Setting the reference level of a wavelength through the reference dialog.
#include "opmPageProbe.h"

using P = OpmPageProbe;

namespace {

// Loss Meter with a reference of its own at every wavelength but 1310 nm.
const Keys kSetup { { "TestMode", "LossMeter" }, { "Reference850", "-1" }, { "Reference1310", "0" },
                    { "Reference1490", "-3" }, { "Reference1550", "-4" }, { "Reference1625", "-5" } };

} // namespace

class TestOpmReference : public QObject
{
    Q_OBJECT
private slots:
    void scenario_data();
    void scenario();
    void dialog_data();
    void dialog();
};

void TestOpmReference::scenario_data()
{
    addScenarioColumns();
    QTest::newRow("set") << kSetup << "show 1310 -12.34; click reference; click set"
            << with(inFile(with(kSetup, { { "Reference1310", "-12.34" } })),
                    { { "refs", "-1 -12.34 -3 -4 -5" }, { "refLabel", "Ref.: -12.34 dBm" },
                      { "capture", "-12.34/0" }, { "dialog", "none" } });
    QTest::newRow("no light at the press")
            << kSetup << "show 1310 -7; show 1310 ---.--; click reference; click set"
            << Keys { { "refs", "-1 -7 -3 -4 -5" }, { "refLabel", "Ref.: -7 dBm" },
                      { "file:Reference1310", "-7" } };
    QTest::newRow("no reading yet") << kSetup << "click reference; click set"
            << Keys { { "refs", "0 0 -3 -4 -5" }, { "refLabel", "Ref.: 0 dBm" },
                      { "file:Reference850", "0" } };
    // The capture is frozen while the dialog is open and stored for the wavelength reported at Set.
    QTest::newRow("wavelength changes while open")
            << kSetup << "show 1310 -12.34; click reference; show 1550 -20; click set"
            << Keys { { "refs", "-1 0 -3 -12.34 -5" }, { "refLabel", "Ref.: -12.34 dBm" },
                      { "file:Reference1550", "-12.34" }, { "file:Reference1310", "0" } };
    // However the dialog goes without Set, nothing is stored and the capture follows the reading.
    for (const char* way : { "click cancel", "escape", "close" }) {
        TestCompat::addRow("%s", way)
                << kSetup << QString("show 1550 -12.34; click reference; %1; show 1550 -9").arg(way)
                << Keys { { "refs", "-1 0 -3 -4 -5" }, { "refLabel", "Ref.: -1 dBm" },
                          { "capture", "-9/0" }, { "dialog", "none" } };
    }
}

void TestOpmReference::scenario()
{
    runScenario();
}

void TestOpmReference::dialog_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("end");
    QTest::addColumn<QStringList>("lines");

    QTest::newRow("live reading, Set") << "show 1310 -12.34" << "click set"
            << QStringList { "Current Optical Level:-12.34 dBm at 1310 nm",
                             "Or press Cancel instead if you prefer to keep the previously stored value "
                             "of 0 dBm" };
    QTest::newRow("no light, Cancel") << "show 1550 -7; show 1550 ---.--" << "click cancel"
            << QStringList { "Current Optical Level:---.-- dBm at 1550 nm" };
    QTest::newRow("Escape") << "" << "escape" << QStringList();
    QTest::newRow("closed") << "" << "close" << QStringList();
    QTest::newRow("page goes") << "" << "" << QStringList();
}

// The dialog's two lines; it is modal, and it is disposed of however it is closed, also with
// its page.
void TestOpmReference::dialog()
{
    QFETCH(QString, steps);
    QFETCH(QString, end);
    QFETCH(QStringList, lines);

    PageFixture fx(kSetup);
    fx.act(steps + "; click reference");
    QPointer<CDialog> dialog = P::m_pReferenceDialog(fx.get());
    QVERIFY(dialog && dialog->isVisible());
    QCOMPARE(dialog->windowModality(), Qt::ApplicationModal);
    QStringList texts;
    for (const QLabel* label : dialog->findChildren<QLabel*>())
        texts << label->text();
    for (const QString& line : lines)
        QVERIFY2(texts.contains(line), qPrintable(texts.join("\n")));
    if (end.isEmpty())
        fx.page.reset();
    fx.act(end);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!dialog);
    QVERIFY(!QApplication::activeModalWidget());
}

QTEST_MAIN(TestOpmReference)
#include "tst_opmreference.moc"
