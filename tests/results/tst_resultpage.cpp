// The process-wide store of saved readings (twelve at most, oldest first, each stamped with the
// local time of its save), and the Result tab: one line per saved reading, built when the tab
// opens, blanked when it closes.
#include "opmPageProbe.h"
#include "resultRows.h"

#include <QDateTime>

class TestResultPage : public QObject
{
    Q_OBJECT
private slots:
    void lines_data()
    {
        addColumns<QStringList, QStringList>("results expected");

        addRow("empty store", QStringList(), QStringList());
        addRow(
            "limits on and off",
            QStringList() << "Power Meter|1550|-12.345 dBm|YES"
                          << "Loss Meter|850|2.750000 dB/km|",
            QStringList()
                << "Loc #1 , Wave length:1550 nm , Mode:Power Meter , Value:-12.345 dBm , Pass:YES"
                << "Loc #2 , Wave length:850 nm , Mode:Loss Meter , Value:2.750000 dB/km");
        QStringList thirteen, shown;
        for (int i = 1; i <= 13; ++i)
            thirteen << QString("Power Meter|1625|-%1.347 dBm|").arg(i);
        for (int i = 1; i <= 12; ++i)
            shown << QString("Loc #%1 , Wave length:1625 nm , Mode:Power Meter , Value:-%2.347 dBm")
                         .arg(i)
                         .arg(i + 1);
        addRow("thirteen: the oldest dropped", thirteen, shown);
        // Every field at its full width: the line is cut at 99 characters.
        const QString w(15, 'W');
        addRow("full-width fields", QStringList((QStringList() << w << w << w << w).join("|")),
               QStringList("Loc #1 , Wave length:WWWWWWWWWWWWWWW nm , Mode:WWWWWWWWWWWWWWW , "
                           "Value:WWWWWWWWWWWWWWW , Pass:WWWWW"));
        // Texts as they were saved, bytes above 0x7f and markup included.
        addRow("Latin-1 and markup",
               QStringList(QString::fromLatin1("Loss Meter|13\xb5<&>|-1.5 d\xe9\"|")),
               QStringList(QString::fromLatin1(
                   "Loc #1 , Wave length:13\xb5<&> nm , Mode:Loss Meter , Value:-1.5 d\xe9\"")));
    }
    void lines()
    {
        QFETCH(QStringList, results);
        QFETCH(QStringList, expected);
        QStringList blank;
        while (blank.size() < COpmShowResultPage::kLineCount)
            blank << QString();
        expected += blank.mid(expected.size());

        TestDeviceRoot root;
        const QString format("yyyy-MM-dd HH:mm:ss");
        const QString before = QDateTime::currentDateTime().toString(format);
        const QStringList times = storeResults(results);
        const QString after = QDateTime::currentDateTime().toString(format);
        foreach (const QString& time, times)
            QVERIFY2(before <= time && time <= after, qPrintable(time));
        // The newest is the last saved; the store's copies follow what a list holds.
        CBrovaOpmDataEngine* store = CBrovaOpmDataEngine::getSingleInstance();
        if (!results.isEmpty())
            QCOMPARE(QString::fromLatin1(store->getLastResultItem().value),
                     results.last().section('|', 2, 2));
        std::list<Result> list(1);
        store->getAllResultItem(list);
        QCOMPARE(int(list.size()), 1 + store->getResultItemCount());

        COpmShowResultPage page;
        QCOMPARE(OpmPageProbe::lines(&page), blank);
        page.show();
        QCOMPARE(OpmPageProbe::lines(&page), expected);
        page.hide();
        QCOMPARE(OpmPageProbe::lines(&page), blank);
        page.show();
        QCOMPARE(OpmPageProbe::lines(&page), expected);

        OpmPageProbe::clear(&page)->click();
        QCOMPARE(OpmPageProbe::lines(&page), blank);
        QCOMPARE(store->getResultItemCount(), 0);
    }
};

QTEST_MAIN(TestResultPage)
#include "tst_resultpage.moc"
