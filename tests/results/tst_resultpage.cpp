// The process-wide store of saved readings, and the Result tab: one line per saved reading, built
// when the tab opens, blanked when it closes.
#include "opmPageProbe.h"
#include "resultRows.h"

#include <QDateTime>

#include <list>

namespace {

CBrovaOpmDataEngine* store() { return CBrovaOpmDataEngine::getSingleInstance(); }

// Reading number n carries n as its value text.
Result reading(int n)
{
    Result r;
    std::memset(&r, 0, sizeof r);
    FixedText::copy(r.value, QByteArray::number(n).constData());
    return r;
}

// The values of a list after the store's records are appended to it.
QString withStored(std::list<Result> list)
{
    store()->getAllResultItem(list);
    QStringList numbers;
    for (std::list<Result>::const_iterator it = list.begin(); it != list.end(); ++it)
        numbers << QString::fromLatin1(it->value);
    return numbers.join(" ");
}

QByteArray bytesOf(const Result& r)
{
    return QByteArray(reinterpret_cast<const char*>(&r), sizeof r);
}

} // namespace

class TestResultPage : public QObject
{
    Q_OBJECT
private slots:
    void store();
    void lines_data();
    void lines();
};

// An add stamps the caller's record and the stored copy with the local time, to the second. The
// thirteenth reading drops the oldest; the copies are appended to what a list holds, oldest
// first. The newest record of an empty store is zero-filled.
void TestResultPage::store()
{
    ::store()->clearAllresultItem();
    QCOMPARE(bytesOf(::store()->getLastResultItem()), QByteArray(sizeof(Result), '\0'));
    Result first = reading(1);
    const QDateTime before = QDateTime::currentDateTime();
    ::store()->addResultItem(first);
    const QDateTime after = QDateTime::currentDateTime();
    QCOMPARE(bytesOf(::store()->getLastResultItem()), bytesOf(first));
    const QString format("yyyy-MM-dd HH:mm:ss");
    QVERIFY2(first.time == before.toString(format) || first.time == after.toString(format),
             first.time);

    for (int n = 2; n <= 13; ++n) {
        Result r = reading(n);
        ::store()->addResultItem(r);
    }
    QCOMPARE(::store()->getResultItemCount(), 12);
    QCOMPARE(QString::fromLatin1(::store()->getLastResultItem().value), QString("13"));
    QCOMPARE(withStored(std::list<Result>(1, reading(100))),
             QString("100 2 3 4 5 6 7 8 9 10 11 12 13"));
    ::store()->clearAllresultItem();
    QCOMPARE(withStored(std::list<Result>()), QString());
    QCOMPARE(bytesOf(::store()->getLastResultItem()), QByteArray(sizeof(Result), '\0'));
}

void TestResultPage::lines_data()
{
    addColumns<QStringList, QStringList>("results expected");

    QTest::newRow("empty store") << QStringList() << QStringList();
    QTest::newRow("limits on and off")
        << (QStringList() << "Power Meter|1550|-12.345 dBm|YES"
                          << "Loss Meter|850|2.750000 dB/km|")
        << (QStringList()
            << "Loc #1 , Wave length:1550 nm , Mode:Power Meter , Value:-12.345 dBm , Pass:YES"
            << "Loc #2 , Wave length:850 nm , Mode:Loss Meter , Value:2.750000 dB/km");
    QStringList twelve, shown;
    for (int i = 1; i <= 12; ++i) {
        twelve << QString("Power Meter|1625|-%1.347 dBm|").arg(i);
        shown << QString("Loc #%1 , Wave length:1625 nm , Mode:Power Meter , Value:-%1.347 dBm")
                     .arg(i);
    }
    QTest::newRow("twelve, oldest first") << twelve << shown;
    // Every field at its full width: the line is cut at 99 characters.
    const QString w(15, 'W');
    QTest::newRow("full-width fields")
        << QStringList((QStringList() << w << w << w << w).join("|"))
        << QStringList("Loc #1 , Wave length:WWWWWWWWWWWWWWW nm , Mode:WWWWWWWWWWWWWWW , "
                       "Value:WWWWWWWWWWWWWWW , Pass:WWWWW");
    // Texts as they were saved, bytes above 0x7f and markup included.
    QTest::newRow("Latin-1 and markup")
        << QStringList(QString::fromLatin1("Loss Meter|13\xb5<&>|-1.5 d\xe9\"|"))
        << QStringList(QString::fromLatin1(
               "Loc #1 , Wave length:13\xb5<&> nm , Mode:Loss Meter , Value:-1.5 d\xe9\""));
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
    storeResults(results);
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
    QCOMPARE(CBrovaOpmDataEngine::getSingleInstance()->getResultItemCount(), 0);
}

QTEST_MAIN(TestResultPage)
#include "tst_resultpage.moc"
