// The Result tab: one line per saved reading, built when the tab opens, blanked when it closes.
#include "opmPageProbe.h"
#include "resultRows.h"

class TestResultPage : public QObject
{
    Q_OBJECT
private slots:
    void lines_data();
    void lines();
    void clearReachesSetupSummary();
};

void TestResultPage::lines_data()
{
    QTest::addColumn<QStringList>("results");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("empty store") << QStringList() << QStringList();
    QTest::newRow("limits on and off")
        << QStringList { "Power Meter|1550|-12.345 dBm|YES", "Loss Meter|850|2.750000 dB/km|",
               "Power Meter|1310|0.000120 mW|NO" }
        << QStringList {
               "Loc #1 , Wave length:1550 nm , Mode:Power Meter , Value:-12.345 dBm , Pass:YES",
               "Loc #2 , Wave length:850 nm , Mode:Loss Meter , Value:2.750000 dB/km",
               "Loc #3 , Wave length:1310 nm , Mode:Power Meter , Value:0.000120 mW , Pass:NO"
           };

    QStringList twelve, twelveLines;
    for (int i = 1; i <= 12; ++i) {
        twelve << QString("Power Meter|1625|-%1.000 dBm|").arg(i);
        twelveLines << QString(
            "Loc #%1 , Wave length:1625 nm , Mode:Power Meter , Value:-%1.000 dBm")
                           .arg(i);
    }
    QTest::newRow("twelve, oldest first") << twelve << twelveLines;

    // Every field at its full width: the line is cut at 99 characters.
    const QString w(15, 'W');
    const QString full
        = QString("Loc #1 , Wave length:%1 nm , Mode:%1 , Value:%1 , Pass:%1").arg(w);
    QTest::newRow("full-width fields")
        << QStringList { QStringList { w, w, w, w }.join("|") } << QStringList { full.left(99) };
}

void TestResultPage::lines()
{
    QFETCH(QStringList, results);
    QFETCH(QStringList, expected);
    QStringList blank;
    while (blank.size() < COpmShowResultPage::kLineCount)
        blank << QString();
    expected += blank.mid(expected.size());

    TestDeviceRoot root;
    CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
    storeResults(results);
    COpmShowResultPage page;
    QCOMPARE(OpmPageProbe::lines(&page), blank);

    page.show();
    QCOMPARE(OpmPageProbe::lines(&page), expected);
    page.hide();
    QCOMPARE(OpmPageProbe::lines(&page), blank);
    page.show();
    QCOMPARE(OpmPageProbe::lines(&page), expected);
    QCOMPARE(store->getResultItemCount(), results.size());

    OpmPageProbe::m_pClear(&page)->click();
    QCOMPARE(OpmPageProbe::lines(&page), blank);
    QCOMPARE(store->getResultItemCount(), 0);
}

void TestResultPage::clearReachesSetupSummary()
{
    PageFixture fx;
    fx.act("show 1550 -12.34; click save; tick");
    QCOMPARE(fx.state().value("summary"),
        QString("Last Saved - Loc#1 Wave length:1550 nm , Mode:Power Meter , Value:-12.340 dBm"));

    COpmShowResultPage page;
    page.show();
    OpmPageProbe::m_pClear(&page)->click();
    fx.act("tick");
    fx.verify({ { "summary", " " }, { "stored", "0" } });
}

QTEST_MAIN(TestResultPage)
#include "tst_resultpage.moc"
